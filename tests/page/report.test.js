// Opens reports in a browser and uses them. The environment variable REPORT names the report of a run with the kill
// switch, one exempt application and DHCP; REPORT_OF_SEVERAL that of a run with these, leak protection, one
// application that others block, and Skein; REPORT_OF_DUMP that of machine.xml.
import assert from "node:assert/strict";
import { after, before, beforeEach, test } from "node:test";
import { pathToFileURL } from "node:url";
import { chromium } from "playwright-core";

let browser;
let page;
let complaints;

before(async () => {
  browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
});
after(() => browser.close());

async function open({ report = process.env.REPORT, ...options } = {}) {
  await page?.close();
  page = await browser.newPage(options);
  complaints = [];
  page.on("console", (message) => complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("request", (request) => request.url().startsWith("file:") || complaints.push(request.url()));
  await page.goto(pathToFileURL(report).href);
}
beforeEach(() => open());

async function ask(fields) {
  for (const [id, value] of Object.entries(fields)) {
    await (["direction", "protocol", "application"].includes(id)
      ? page.selectOption(`#${id}`, { label: value })
      : page.fill(`#${id}`, value));
  }
  await page.click("#decide");
  return page.getAttribute("#verdict", "data-verdict");
}

const table = (section) => page.locator(`table[data-section="${section}"]`);
const rowNames = (section) => table(section).locator("tbody th").allTextContents();
const rowOf = (section, name) =>
  table(section)
    .locator("tbody tr")
    .filter({ has: page.getByText(name, { exact: true }) });

test("nothing is loaded and nothing complains", async () => {
  await page.click("#theme");
  await ask({ remote: "10.0.0.1" });
  assert.deepEqual(complaints, []);
});

test("the box blocks what the kill switch blocks, and names the filter", async () => {
  assert.equal(await ask({ remote: "1.1.1.1", port: "443" }), "block");
  assert.match(await page.textContent("#verdict"), /^✕ blocked/);
  const answer = await page.textContent("#answer");
  assert.match(answer, /ALE_AUTH_CONNECT_V4: block/);
  assert.match(answer, /“Corvane Kill Switch” \(weight 8\): hard block of filter \d+/);
  assert.match(answer, /matches every connection/);
});

test("Enter in the box asks", async () => {
  await page.fill("#remote", "127.0.0.1");
  await page.press("#remote", "Enter");
  assert.equal(await page.getAttribute("#verdict", "data-verdict"), "permit");
});

test("a verdict that depends on an open rule names each reading", async () => {
  await page.check("#loopback");
  assert.equal(await ask({ remote: "1.1.1.1" }), "depends");
  const answer = await page.textContent("#answer");
  assert.match(answer, /✓ permittedloopback-bits = alone/);
  assert.match(answer, /✕ blockedloopback-bits = accompanied/);
});

test("the exempt application is free", async () => {
  assert.equal(await ask({ remote: "1.1.1.1", application: "notepad.exe" }), "permit");
});

test("IPv6, protocols and ports lead to the rules for them", async () => {
  assert.equal(await ask({ remote: "2001:db8::1", port: "443" }), "block");
  assert.equal(await ask({ remote: "fe80::1", port: "53" }), "block");
  assert.equal(await ask({ remote: "fe80::1", port: "54" }), "permit");
});

test("an inbound connection passes the layers of inbound ones", async () => {
  await ask({ remote: "1.1.1.1", direction: "inbound" });
  assert.match(await page.textContent("#answer"), /ALE_AUTH_RECV_ACCEPT_V4: block/);
});

for (const [id, value, problem] of [
  ["remote", "10.0.0", /no address/],
  ["remote", "1::2::3", /no address/],
  ["remote", "<img src=x>", /no address/],
  ["port", "65536", /Ports are numbers/],
  ["port", "-1", /Ports are numbers/],
]) {
  test(`the box says what is wrong with ${value}`, async () => {
    assert.equal(await ask({ [id]: value }), null);
    assert.match(await page.textContent("#verdict"), problem);
  });
}

test("the matrix has a row for each destination that makes a difference", async () => {
  assert.deepEqual(await rowNames("outbound-4"), [
    "10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16, 239.255.255.250, 255.255.255.255",
    "127.0.0.0/8",
    "any other",
    "loopback: 10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16, 239.255.255.250, 255.255.255.255",
    "loopback: 127.0.0.0/8",
    "loopback: any other",
  ]);
});

test("columns are apart where they are so over loopback alone, and cells name the fields that they leave open", async () => {
  const matrix = await page.evaluate(() => {
    const classes = (...numbers) => [
      ...numbers.map((number) => ({ intervals: [[number, number]], example: number, text: number, masked: [] })),
      { intervals: [["0x0", "0xffff"]], example: "0x0", text: "rest", masked: [] },
      { intervals: [], example: null, text: "unset", unset: true, masked: [] },
    ];
    const [permit, block] = [{ verdict: 0 }, { verdict: 1 }];
    const section = {
      fields: [
        { field: "flags", classes: classes("0x1") },
        { field: "protocol", classes: classes("0x11") },
        { field: "remote port", classes: classes("0x35", "0x36") },
      ],
      nodes: [
        { field: 2, targets: [permit, block, block, block] },
        { field: 1, targets: [permit, block, block] },
        { field: 0, targets: [{ node: 0 }, { node: 1 }, block] },
      ],
      root: { node: 2 },
    };
    const found = policy.matrixOf(section, { protocol: 6n, "remote port": 443n }, [0n, 1n]);
    return {
      ports: found.ports.map(({ text }) => text),
      interfaces: found.interfaces.map(({ text }) => text),
      cells: found.slices.map(({ rows: [row], cellAt }) =>
        found.ports.map((port) => cellAt(row, found.interfaces[0], found.applications[0], port)),
      ),
    };
  });
  assert.deepEqual(matrix, {
    ports: ["0x35", "any other"],
    interfaces: ["any"],
    cells: [
      [
        { verdict: 1, varying: ["protocol"] },
        { verdict: 1, varying: ["protocol"] },
      ],
      [
        { verdict: 0, varying: [] },
        { verdict: 1, varying: [] },
      ],
    ],
  });
});

test("cells tell their verdict by sign and by name", async () => {
  const cells = rowOf("outbound-4", "any other").locator("button");
  assert.match(await cells.last().textContent(), /^✕/);
  assert.match(
    await cells.last().getAttribute("aria-label"),
    /^blocked.*: destination any other, interface any, application any other, port any other$/,
  );
});

test("arrow keys move between cells, and Enter asks about one", async () => {
  const cells = table("outbound-4").locator("tbody tr").nth(0).locator("button");
  await cells.nth(0).focus();
  await page.keyboard.press("ArrowRight");
  assert.ok(await cells.nth(1).evaluate((cell) => cell === document.activeElement));
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("ArrowUp");
  await page.keyboard.press("ArrowLeft");
  assert.ok(await cells.nth(0).evaluate((cell) => cell === document.activeElement));
  await page.keyboard.press("Enter");
  assert.equal(await page.inputValue("#remote"), "10.0.0.0");
});

/** The cells whose verdict differs from the one that the box shows after a click on the cell. */
const cellsThatLie = () =>
  page.locator(".cell").evaluateAll((buttons) =>
    buttons
      .filter((button) => {
        button.click();
        return !button.classList.contains(document.getElementById("verdict").dataset.verdict);
      })
      .map((button) => button.title),
  );

test("every cell asks about a connection that fares as it says", async () => {
  assert.ok((await page.locator(".cell").count()) > 20);
  assert.deepEqual(await cellsThatLie(), []);
});

for (const report of ["REPORT", "REPORT_OF_SEVERAL"]) {
  test(`the map and the filters of ${report} agree on random connections`, async () => {
    await open({ report: process.env[report] });
    const { compared, apart } = await page.evaluate(() => {
      const data = JSON.parse(document.getElementById("data").textContent);
      let seed = 1;
      const below = (limit) => {
        seed = (seed * 48271) % 2147483647;
        return seed % limit;
      };
      const pick = (values) => values[below(values.length)];
      const ends = (field) =>
        data.snapshot.filters
          .flatMap(({ conditions }) => conditions)
          .filter((condition) => condition.field === field && condition.test === "in-interval")
          .flatMap(({ first, last }) => [BigInt(first), BigInt(first) + 1n, BigInt(last), BigInt(last) + 1n]);
      const applications = [...data.applications.map(({ id }) => id), "61000000"];
      const addresses = {
        4: [...ends("IP_REMOTE_ADDRESS").filter((number) => number < 1n << 32n), 0x01010101n],
        6: [...ends("IP_REMOTE_ADDRESS").filter((number) => number >> 32n && number >> 128n === 0n), 1n],
      };
      const ports = [...ends("IP_REMOTE_PORT"), ...ends("IP_LOCAL_PORT"), 443n];
      const firstReadings = new Map(data.assumptions.map(({ name, readings }) => [name, readings[0].name]));
      const areFirst = (readings) =>
        Object.entries(readings).every(([name, reading]) => firstReadings.get(name) === reading);
      let compared = 0;
      const apart = [];
      for (let i = 0; i < 5000; ++i) {
        const ipVersion = pick([4, 6]);
        const connection = {
          direction: pick(["outbound", "inbound"]),
          ipVersion,
          protocol: pick([1n, 6n, 17n, undefined]),
          "local address": 1n,
          "remote address": pick([...addresses[ipVersion], undefined]),
          "local port": pick([...ports, undefined]),
          "remote port": pick([...ports, undefined]),
          application: pick([...applications, undefined]),
          interface: pick([1n, 1689399632855040n, 1689399632855041n, undefined]),
          flags: pick([0n, 1n, 0x800001n, undefined]),
        };
        const layers = policy.trace(data.snapshot, connection);
        if (layers.some(({ action }) => action === undefined)) {
          continue;
        }
        const byFilters = layers.every(({ action }) => action === "permit") ? "permit" : "block";
        const verdict = policy.verdictOf(data.map, connection);
        const byMap = (verdict.outcomes?.find(({ readings }) => areFirst(readings)) ?? verdict).verdict;
        ++compared;
        if (byFilters !== byMap) {
          apart.push(JSON.stringify(connection, (_, value) => (typeof value === "bigint" ? String(value) : value)));
        }
      }
      return { compared, apart };
    });
    assert.equal(compared, 5000);
    assert.deepEqual(apart, []);
  });
}

test("a hard permit of a heavier sublayer stands, a soft one is overridden", async () => {
  const told = await page.evaluate(() => {
    const always = { layer: "ALE_AUTH_CONNECT_V4", inForce: true, weight: "0x1", conditions: [] };
    const block = { ...always, sublayer: "light", action: "BLOCK", hard: true };
    const sublayers = [
      { key: "light", weight: 1 },
      { key: "heavy", weight: 2 },
    ];
    return [true, false].map((hard) => {
      const filters = [{ ...always, sublayer: "heavy", action: "PERMIT", hard }, block];
      const [{ action, rungs }] = policy.trace({ sublayers, filters }, { direction: "outbound", ipVersion: 4 });
      return [action, ...rungs.map(({ effect }) => effect)];
    });
  });
  assert.deepEqual(told, [
    ["permit", "stands", "ignored"],
    ["block", "overridden", "stands"],
  ]);
});

test("the ladder marks the filter that decides", async () => {
  await ask({ remote: "1.1.1.1" });
  const deciding = page.locator("#ladders details[open] li.deciding");
  assert.equal(await deciding.count(), 2);
  assert.match(await deciding.first().textContent(), /▶ decides\s*block\s*\d+ {2}every connection/);
});

test("promises show their state, and what breaks them", async () => {
  const promise = (name) => page.locator(`[data-promise="${name}"]`);
  assert.match(await promise("kill-switch-no-look-ups").textContent(), /^✓ holds/);
  assert.match(
    await promise("kill-switch-local-network").textContent(),
    /^\? holds only under a reading.*unset-fields = match/s,
  );
  assert.match(await promise("dhcp-client").textContent(), /^✕ broken.*remote 198\.51\.100\.1:67.*: block/s);
});

test("findings are told by kind, each with what would be clearer", async () => {
  const findings = await page.textContent("#finding-list");
  assert.match(findings, /flags-equality: 6 filters/);
  assert.match(
    findings,
    /overridden-permit: 6 filters.*Clearer: give the permit.*\d+ “Corvane DHCP” at ALE_AUTH_CONNECT_V4, with \d+ “Corvane Kill Switch”/s,
  );
});

test("the page follows the system's colours until told otherwise", async () => {
  await open({ colorScheme: "dark" });
  const theme = () => page.evaluate(() => document.documentElement.dataset.theme);
  assert.equal(await theme(), "dark");
  await page.click("#theme");
  assert.equal(await theme(), "light");
});

test("nothing is wider than a telephone but what scrolls by itself", async () => {
  await open({ viewport: { width: 360, height: 740 } });
  assert.ok((await page.evaluate(() => document.documentElement.scrollWidth)) <= 360);
});

const headOf = (section, row) => table(section).locator("thead tr").nth(row).locator("th:not(.axis)").allTextContents();

/** The signs of a row, from left to right. */
const signsOf = async (section, name) => (await rowOf(section, name).locator("button").allTextContents()).join("");

test("several features part the columns by interface, application and port", async () => {
  await open({ report: process.env.REPORT_OF_SEVERAL });
  assert.deepEqual(await headOf("outbound-4", 0), ["1689399632855040", "any other"]);
  const applications = ["unwanted.exe", "notepad.exe", "svchost.exe", "any other"];
  assert.deepEqual(await headOf("outbound-4", 1), [...applications, ...applications]);
  assert.deepEqual(await headOf("outbound-4", 2), Array(8).fill(["53", "any other"]).flat());
  assert.deepEqual(await headOf("inbound-4", 0), ["1689399632855040", "1689399632855041", "any other"]);
});

test("several features part the rows by destination, and block where either blocks", async () => {
  await open({ report: process.env.REPORT_OF_SEVERAL });
  assert.deepEqual((await rowNames("outbound-4")).slice(0, 4), [
    "10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16, 239.255.255.250, 255.255.255.255",
    "127.0.0.0/8",
    "198.51.100.7, 203.0.113.1",
    "any other",
  ]);
  assert.equal(await signsOf("outbound-4", "127.0.0.0/8"), "✕✕✓✓✓✓✓✓" + "✕✕✕✓✓✓✕✓");
  assert.equal(await signsOf("outbound-4", "198.51.100.7, 203.0.113.1"), "✕✕✓✓✕✕✕✕" + "✕✕✕✓✕✕✕✕");
  assert.equal(await signsOf("outbound-4", "any other"), "✕✕✓✓✕✕✕✕" + "✕✕✕✕✕✕✕✕");
});

test("with several features too, every cell asks about a connection that fares as it says", async () => {
  await open({ report: process.env.REPORT_OF_SEVERAL });
  assert.deepEqual(await cellsThatLie(), []);
  assert.deepEqual(complaints, []);
});

test("the exempt application leaves by the tunnel alone, and an application that others block not at all", async () => {
  await open({ report: process.env.REPORT_OF_SEVERAL });
  const asked = { remote: "1.1.1.1", port: "443", application: "notepad.exe" };
  assert.equal(await ask(asked), "block");
  await page.selectOption("#interface", { label: "1689399632855040" });
  assert.equal(await ask(asked), "permit");
  assert.equal(await ask({ ...asked, application: "unwanted.exe" }), "block");
  assert.match(
    await page.textContent("#answer"),
    /“Corvane Copy of Windows Firewall” \(weight 15\): hard block of filter \d+/,
  );
});

test("several features have their promises", async () => {
  await open({ report: process.env.REPORT_OF_SEVERAL });
  const states = await page
    .locator("[data-promise]")
    .evaluateAll((promises) =>
      promises.map((one) => `${one.dataset.promise}: ${one.querySelector(".badge").textContent}`),
    );
  assert.deepEqual(states, [
    "kill-switch-closes-outbound: ✓ holds",
    "kill-switch-closes-inbound: ✓ holds",
    "kill-switch-no-look-ups: ✓ holds",
    "kill-switch-loopback: ✕ broken",
    "kill-switch-local-network: ? holds only under a reading",
    "kill-switch-exempt: ✓ holds",
    "dhcp-client: ✕ broken",
    "leak-no-look-ups: ✓ holds",
    "leak-closes: ? holds only under a reading",
    "leak-blocked-applications: ✓ holds",
    "skein-peers: ✕ broken",
    "skein-closed: ✓ holds",
  ]);
});

test("a sheet of paper has every column", async () => {
  await open({ report: process.env.REPORT_OF_SEVERAL, viewport: { width: 690, height: 980 } });
  await page.emulateMedia({ media: "print" });
  const widths = await page.locator("table").evaluateAll((tables) => tables.map((one) => one.scrollWidth));
  assert.equal(widths.length, 4);
  assert.ok(Math.max(...widths) <= 690, String(widths));
});

test("on paper everything is open", async () => {
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  assert.equal(await page.locator("details:not([open])").count(), 0);
});

test("a report of a dump says so", async () => {
  await open({ report: process.env.REPORT_OF_DUMP });
  assert.match(
    await page.textContent("#about"),
    /^The filtering engine of a dump, .*: 1 filter in 1 sublayer, whose order is inferred from that of the filters\./,
  );
  assert.equal(await ask({ remote: "10.0.0.1", port: "25" }), "block");
  assert.equal(await ask({ remote: "10.0.0.1", port: "443" }), "permit");
  assert.deepEqual(complaints, []);
});
