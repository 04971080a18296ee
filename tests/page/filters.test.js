// Searches and unfolds the filters of reports.
import assert from "node:assert/strict";
import { ask, page, testOn } from "./support.js";

const both = ["fresh", "large"];
const owners = () => page.locator("#filter-list > details > summary").allTextContents();
const openOwners = () => page.locator("#filter-list > details[open] > summary").allTextContents();
const listed = () => page.locator("#filter-list details[open] .filters > li").allTextContents();
const search = (text) => page.fill("#search", text);

testOn(both, "the filters of this product are open, those of others folded", async (name) => {
  const ours = "Corvane Firewall Tool: 63 filters, this product's";
  const theirs = [
    "MPSSVC_WF: 608 filters",
    "MPSSVC_WSH: 236 filters",
    "Nimbus Endpoint Security: 312 filters",
    "MPSSVC_APP_ISOLATION: 40 filters",
    "Harbour Remote Access: 4 filters",
  ];
  assert.deepEqual((await owners()).sort(), [ours, ...(name === "large" ? theirs : [])].sort());
  assert.deepEqual(await openOwners(), [ours]);
  assert.equal((await listed()).length, 63);
});

testOn(["large"], "a long list shows its beginning, and the rest when asked", async () => {
  await page.locator("#filter-list summary", { hasText: "MPSSVC_WF" }).click();
  const list = page.locator("#filter-list details", { hasText: "MPSSVC_WF" });
  await list.locator(".more").waitFor();
  assert.equal(await list.locator(".filters > li").count(), 100);
  await list.locator(".more").click();
  assert.equal(await list.locator(".filters > li").count(), 608);
  assert.equal(await list.locator(".more").count(), 0);
});

for (const [text, count, first] of [
  ["nimbus", 312, undefined],
  ["NIMBUS 203.106.", 1, /“Nimbus policy 7: keeps/],
  ["harbour permit", 0, undefined],
  ["harbour-agent.exe", 4, /“Harbour reaches its server”/],
  ["nimbus 8003", 4, /“Nimbus: product 23 stays off”/],
  ["51820", 2, /“Harbour reaches its server”/],
  ["5007", 2, /IP_LOCAL_PORT RANGE/],
  ["ALE_AUTH_LISTEN_V6 product-7-service", 1, /“Rule 8 of product 7/],
]) {
  testOn(["large"], `the search finds what has ${text}`, async () => {
    await search(text);
    assert.equal(await page.textContent("#filter-count"), `${count} of 1263 filters`);
    if (first !== undefined) {
      assert.match((await listed())[0], first);
    }
  });
}

testOn(both, "the search finds a filter by its key and by its id, and an empty one shows all again", async () => {
  const before = await owners();
  const [key, id] = await page.evaluate(() => {
    const { key, id } = report.snapshot.filters.at(-1);
    return [key, String(id)];
  });
  for (const text of [key, key.toUpperCase(), id]) {
    await search(text);
    assert.equal((await listed()).length, 1);
    assert.match((await listed())[0], new RegExp(`${id} .*${key}`));
  }
  await search("");
  assert.deepEqual(await owners(), before);
});

testOn(both, "the ladder marks the filter that decides", async () => {
  await ask({ remote: "1.1.1.1" });
  const deciding = page.locator("#ladders > details[open] li.deciding");
  await deciding.first().waitFor();
  const ours = (await deciding.allTextContents()).filter((text) =>
    /▶ decides\s*block\s*\d+ {2}every connection/.test(text),
  );
  assert.equal(ours.length, 2);
});

testOn(["large"], "the ladder folds the filters of others that fare alike", async () => {
  await ask({ direction: "inbound", remote: "1.1.1.1" });
  const runs = page.locator("#ladders > details[open] li.run > details");
  assert.ok((await runs.count()) > 0);
  const run = runs.first();
  assert.match(await run.locator("summary").textContent(), /^ \d+ filters of Nimbus Endpoint Security$/);
  assert.equal(await run.locator("li").count(), 0);
  await run.locator("summary").click();
  await run.locator("li").first().waitFor();
  assert.equal(await run.locator("li").count(), 40);
});
