// Looks at reports as a whole: their size, colours, width and print.
import assert from "node:assert/strict";
import { statSync } from "node:fs";
import { ask, complaints, fileOf, open, openMaps, page, rowNames, rowOf, table, testOn } from "./support.js";

const both = ["fresh", "large"];
const several = ["fresh-several", "large-several"];

testOn(
  ["large", "large-several", "large-dump"],
  "a machine of 1,200 filters makes a page that is small and soon ready",
  async (name) => {
    const bytes = statSync(fileOf(name)).size;
    assert.ok(bytes < 4_000_000, String(bytes));
    const elements = await page.evaluate(() => document.querySelectorAll("*").length);
    assert.ok(elements < 2500, String(elements));
    const ready = await page.evaluate(() => performance.getEntriesByType("navigation")[0].domContentLoadedEventEnd);
    const answered = await page.evaluate(() => {
      const start = performance.now();
      document.getElementById("decide").click();
      return performance.now() - start;
    });
    console.log(
      `${name}: ${bytes} bytes, ${elements} elements, ready after ${Math.round(ready)} ms, an answer ${Math.round(answered)} ms`,
    );
  },
);

testOn(both, "the page follows the system's colours until told otherwise", async (name) => {
  await open(name, { colorScheme: "dark" });
  const theme = () => page.evaluate(() => document.documentElement.dataset.theme);
  assert.equal(await theme(), "dark");
  await page.click("#theme");
  assert.equal(await theme(), "light");
});

testOn(both, "nothing is wider than a telephone but what scrolls by itself", async (name) => {
  await open(name, { viewport: { width: 360, height: 740 } });
  await openMaps();
  assert.ok((await page.evaluate(() => document.documentElement.scrollWidth)) <= 360);
});

const headOf = (section, row) => table(section).locator("thead tr").nth(row).locator("th:not(.axis)").allTextContents();

/** The signs of a row, from left to right. */
const signsOf = async (section, name) => (await rowOf(section, name).locator("button").allTextContents()).join("");

testOn(["fresh-several"], "several features part the columns by interface, application and port", async () => {
  await openMaps();
  assert.deepEqual(await headOf("outbound-4", 0), ["1689399632855040", "any other"]);
  const applications = ["unwanted.exe", "notepad.exe", "svchost.exe", "any other"];
  assert.deepEqual(await headOf("outbound-4", 1), [...applications, ...applications]);
  assert.deepEqual(await headOf("outbound-4", 2), Array(8).fill(["53", "any other"]).flat());
  assert.deepEqual(await headOf("inbound-4", 0), ["1689399632855040", "1689399632855041", "any other"]);
});

testOn(["large-several"], "several features part the columns for one application by interface and port", async () => {
  await openMaps();
  assert.deepEqual(await headOf("outbound-4", 0), ["1689399632855040", "any other"]);
  assert.deepEqual(await headOf("outbound-4", 1), ["any other", "any other"]);
  assert.deepEqual(await headOf("outbound-4", 2), ["53", "any other", "53", "any other"]);
});

testOn(["fresh-several"], "several features part the rows by destination, and block where either blocks", async () => {
  await openMaps();
  assert.deepEqual((await rowNames("outbound-4")).slice(0, 4), [
    "10.0.0.0/8, 172.16.0.0/12, 192.168.0.0/16, 239.255.255.250, 255.255.255.255",
    "127.0.0.0/8",
    "198.51.100.7, 203.0.113.1",
    "any other",
  ]);
  assert.equal(await signsOf("outbound-4", "127.0.0.0/8"), "✕✕✓✓✓✓✓✓" + "✕✕✕✓✓✓✕✓");
  assert.equal(await signsOf("outbound-4", "198.51.100.7, 203.0.113.1"), "✕✕✓✓????" + "✕✕✕✓??✕?");
  assert.equal(await signsOf("outbound-4", "any other"), "✕✕✓✓????" + "✕✕✕✕✕✕✕✕");
});

testOn(["large-several"], "the rows for one application follow the box", async () => {
  await openMaps();
  assert.equal(await signsOf("outbound-4", "any other"), "??✕✕");
  await ask({ application: "notepad.exe" });
  assert.equal(await signsOf("outbound-4", "any other"), "✓✓✕✕");
});

testOn(
  several,
  "the exempt application leaves by the tunnel alone, and an application that others block not at all",
  async () => {
    const asked = { remote: "1.1.1.1", port: "443", application: "notepad.exe" };
    assert.equal(await ask(asked), "block");
    await page.selectOption("#interface", { label: "1689399632855040" });
    assert.equal(await ask(asked), "permit");
    assert.equal(await ask({ ...asked, application: "unwanted.exe" }), "block");
    assert.match(
      await page.textContent("#answer"),
      /“Corvane Copy of Windows Firewall” \(weight 15\): hard block of filter \d+/,
    );
  },
);

testOn(several, "a sheet of paper has every column", async (name) => {
  await open(name, { viewport: { width: 690, height: 980 } });
  await openMaps();
  await page.emulateMedia({ media: "print" });
  const widths = await page.locator("table").evaluateAll((tables) => tables.map((one) => one.scrollWidth));
  assert.equal(widths.length, 4);
  assert.ok(Math.max(...widths) <= 690, String(widths));
});

testOn(both, "on paper everything is open but the filters of others", async () => {
  await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
  assert.equal(await page.locator("table").count(), 4);
  const folded = await page.locator("details:not([open]) > summary").allTextContents();
  assert.deepEqual(
    folded.filter((text) => !/ filters? of |: \d+ filters$/.test(text)),
    [],
  );
});

testOn(["dump"], "a report of a dump says so", async () => {
  assert.match(
    await page.textContent("#about"),
    /^The filtering engine of a dump, .*: 1 filter in 1 sublayer, whose order is inferred from that of the filters\./,
  );
  assert.equal(await ask({ remote: "10.0.0.1", port: "25" }), "block");
  assert.equal(await ask({ remote: "10.0.0.1", port: "443" }), "permit");
  assert.deepEqual(complaints, []);
});

testOn(["large-dump"], "a report of a large dump says how much it holds", async () => {
  assert.match(await page.textContent("#about"), /^The filtering engine of a dump, .*: 1200 filters in 30 sublayers\./);
  assert.deepEqual(complaints, []);
});
