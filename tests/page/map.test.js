// Opens the tables of a report's map.
import assert from "node:assert/strict";
import { test } from "node:test";
import { ask, cellsThatLie, complaints, open, openMaps, page, rowNames, rowOf, table, testOn } from "./support.js";

const both = ["fresh", "large"];

testOn(both, "maps start folded, and are made when they are opened", async () => {
  assert.equal(await page.locator(".map").count(), 4);
  assert.equal(await page.locator(".cell").count(), 0);
  await page.focus('.map[data-section="outbound-4"] summary');
  await page.keyboard.press("Enter");
  await table("outbound-4").waitFor();
  assert.equal(await page.locator("table").count(), 1);
});

const local = "10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16, 239.255.255.250, 255.255.255.255";
const destinations = {
  fresh: [local, "127.0.0.0/8", "any other", `loopback: ${local}`, "loopback: 127.0.0.0/8", "loopback: any other"],
  large: [
    local,
    "127.0.0.0/8",
    "any other",
    `loopback: ${local}`,
    "loopback: 127.0.0.0/8",
    "loopback: 203.100.43.0 to 203.100.247.255, 203.101.17.0 to 203.101.243.255, 203.102.14.0 to 203.102.205.255, 203.103.191.0 to 203.103.236.255, 203.104.136.0 to 203.104.244.255 and 41 more",
    "loopback: any other",
  ],
};
testOn(both, "the matrix has a row for each destination that makes a difference", async (name) => {
  await openMaps();
  assert.deepEqual(await rowNames("outbound-4"), destinations[name]);
});

test("columns are apart where they are so over loopback alone, and cells name the fields that they leave open", async () => {
  await open("fresh");
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
    const found = tables.of(section, { protocol: 6n, "remote port": 443n }, [0n, 1n]);
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

testOn(both, "cells tell their verdict by sign and by name", async () => {
  await openMaps();
  const cells = rowOf("outbound-4", "any other").locator("button");
  assert.match(await cells.last().textContent(), /^✕/);
  assert.match(
    await cells.last().getAttribute("aria-label"),
    /^blocked.*: destination any other, interface any, application any other, port any other$/,
  );
});

testOn(both, "arrow keys move between cells, and Enter asks about one", async () => {
  await openMaps();
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

testOn(
  [...both, "fresh-several", "large-several"],
  "every cell asks about a connection that fares as it says",
  async () => {
    await openMaps();
    assert.ok((await page.locator(".cell").count()) > 20);
    assert.deepEqual(await cellsThatLie(), []);
    assert.deepEqual(complaints, []);
  },
);

testOn(
  ["large-several"],
  "a table that would be too wide is for the application in the box, and follows it",
  async () => {
    await openMaps();
    assert.match(await table("outbound-4").locator("caption").textContent(), /^Shown for application “any other”/);
    await ask({ application: "notepad.exe" });
    assert.match(await table("outbound-4").locator("caption").textContent(), /^Shown for application “notepad.exe”/);
    const cell = rowOf("outbound-4", "any other").locator("button.permit").first();
    assert.match(await cell.getAttribute("aria-label"), /application notepad\.exe/);
    await cell.click();
    assert.equal(await page.getAttribute("#verdict", "data-verdict"), "permit");
    assert.match(await page.textContent("#verdict"), /notepad\.exe/);
  },
);

testOn(["large"], "a table of inbound connections has the local ports as columns", async () => {
  await openMaps();
  assert.equal(await table("inbound-4").locator("thead th.axis").last().textContent(), "local port");
  assert.match(
    await table("inbound-4").locator(".cell").first().getAttribute("aria-label"),
    /: source .*, local port /,
  );
});

testOn(
  [...both, "fresh-several", "large-several", "large-dump", "large-service"],
  "the map and the filters agree on random connections",
  async (name) => {
    const { compared, apart } = await page.evaluate(() => {
      let seed = 1;
      const below = (limit) => {
        seed = (seed * 48271) % 2147483647;
        return seed % limit;
      };
      const pick = (values) => values[below(values.length)];
      const ends = (field) =>
        report.snapshot.filters
          .flatMap(({ conditions }) => conditions)
          .filter((condition) => condition.field === field && condition.test === "in-interval")
          .flatMap(({ first, last }) => [first, first + 1n, last, last + 1n]);
      const applications = [...report.applications.map(({ id }) => id), "61000000"];
      const addresses = {
        4: [...ends("IP_REMOTE_ADDRESS").filter((number) => number < 1n << 32n), 0x01010101n],
        6: [...ends("IP_REMOTE_ADDRESS").filter((number) => number >> 32n && number >> 128n === 0n), 1n],
      };
      const ports = [...ends("IP_REMOTE_PORT"), ...ends("IP_LOCAL_PORT"), 443n];
      const firstReadings = new Map(report.assumptions.map(({ name, readings }) => [name, readings[0].name]));
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
        const layers = policy.trace(report.snapshot, connection);
        const actions = layers.map(({ action }) => action);
        if (!actions.includes("block") && actions.includes(undefined)) {
          continue;
        }
        const byFilters = actions.includes("block") ? "block" : "permit";
        const verdict = policy.verdictOf(report.map, connection);
        const byMap = (verdict.outcomes?.find(({ readings }) => areFirst(readings)) ?? verdict).verdict;
        ++compared;
        if (byFilters !== byMap) {
          apart.push(JSON.stringify(connection, (_, value) => (typeof value === "bigint" ? String(value) : value)));
        }
      }
      return { compared, apart };
    });
    assert.ok(compared >= (name.startsWith("fresh") ? 5000 : 4900), String(compared));
    assert.deepEqual(apart, []);
  },
);

test("a hard permit of a heavier sublayer stands, a soft one is overridden", async () => {
  await open("fresh");
  const told = await page.evaluate(() => {
    const always = { layer: "ALE_AUTH_CONNECT_V4", inForce: true, weight: "0x1", conditions: [] };
    const block = { ...always, sublayer: "light", action: "BLOCK", hard: true };
    const sublayers = [
      { key: "heavy", weight: 2 },
      { key: "light", weight: 1 },
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

test("a filter that cannot be judged leaves a layer open only where it may change the action", async () => {
  await open("fresh");
  const told = await page.evaluate(() => {
    const filter = (sublayer, action, weight, conditions = [], hard = false) => ({
      ...{ layer: "ALE_AUTH_CONNECT_V4", inForce: true, sublayer, action, weight, conditions, hard },
    });
    const who = [{ field: "ALE_USER_ID", test: "unreadable", first: 0n, last: 0n, bytes: "", negated: false }];
    const sublayers = [
      { key: "heavy", weight: 2 },
      { key: "light", weight: 1 },
    ];
    const block = filter("light", "BLOCK", "0x5");
    return [
      filter("heavy", "PERMIT", "0x1", who),
      filter("heavy", "PERMIT", "0x1", who, true),
      filter("light", "PERMIT", "0x1", who),
      filter("light", "PERMIT", "0x9", who),
      filter("heavy", "CALLOUT_TERMINATING", "0x1"),
      filter("heavy", "CALLOUT_TERMINATING", "0x1", [], true),
    ].map((unjudged) => {
      const filters = [unjudged, block];
      return policy.trace({ sublayers, filters }, { direction: "outbound", ipVersion: 4 })[0].action ?? "open";
    });
  });
  assert.deepEqual(told, ["block", "open", "block", "open", "block", "permit"]);
});
