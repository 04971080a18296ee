// Reads the promises and findings of reports.
import assert from "node:assert/strict";
import { test } from "node:test";
import { openChanged, page, testOn } from "./support.js";

const promise = (name) => page.locator(`[data-promise="${name}"]`);
const unfoldAll = (part) =>
  page.evaluate((selector) => document.querySelectorAll(`${selector} details`).forEach(dom.unfold), part);

testOn(["fresh", "large"], "promises show their state, and what breaks them", async () => {
  await unfoldAll("#promise-list");
  assert.match(await promise("kill-switch-no-look-ups").textContent(), /^✓ holds/);
  assert.match(await promise("dhcp-client").textContent(), /^✕ broken.*remote 198\.51\.100\.1:67.*: block/s);
});

testOn(["fresh"], "a promise that holds under a reading names it", async () => {
  await unfoldAll("#promise-list");
  assert.match(
    await promise("kill-switch-local-network").textContent(),
    /^\? holds only under a reading.*unset-fields = match/s,
  );
});

test("a promise names whose filter breaks it", async () => {
  const connection = { text: "outbound IPv4, remote 203.100.199.1:443" };
  await openChanged("large", (data) => {
    const broken = data.promises.find(({ name }) => name === "kill-switch-exempt");
    broken.breaks = [{ filter: { id: 7, name: "Stop <b>" }, owner: "Nimbus Endpoint Security", connection }];
  });
  assert.match(
    await promise("kill-switch-exempt").textContent(),
    /Broken by filter 7 “Stop <b>” of Nimbus Endpoint Security: outbound IPv4, remote 203\.100\.199\.1:443/,
  );
});

testOn(["fresh", "large"], "findings are told by kind, each with what would be clearer", async (name) => {
  await unfoldAll("#finding-list");
  const findings = await page.textContent("#finding-list");
  assert.match(findings, /flags-equality: 6 filters/);
  assert.match(findings, name === "fresh" ? /overridden-permit: 6 filters/ : /overridden-permit: 36 filters/);
  assert.match(
    findings,
    /Clearer: give the permit.*\d+ “Corvane DHCP” at ALE_AUTH_CONNECT_V4, with \d+ “Corvane Kill Switch”/s,
  );
});

const underReading = "? holds only under a reading";
const states = (localNetwork, exempt, peers) => [
  `kill-switch-closes-outbound: ${underReading}`,
  `kill-switch-closes-inbound: ${underReading}`,
  `kill-switch-no-look-ups: ${underReading}`,
  "kill-switch-loopback: ✕ broken",
  `kill-switch-local-network: ${localNetwork}`,
  `kill-switch-exempt: ${exempt}`,
  "dhcp-client: ✕ broken",
  "leak-no-look-ups: ✓ holds",
  `leak-closes: ${underReading}`,
  "leak-blocked-applications: ✓ holds",
  `skein-peers: ${peers}`,
  "skein-closed: ✓ holds",
];
testOn(["fresh-several", "large-several"], "several features have their promises", async (name) => {
  const told = await page
    .locator("[data-promise]")
    .evaluateAll((promises) =>
      promises.map((one) => `${one.dataset.promise}: ${one.querySelector(".badge").textContent}`),
    );
  const broken = "✕ broken";
  const expected =
    name === "fresh-several" ? states(underReading, "✓ holds", underReading) : states(broken, broken, broken);
  assert.deepEqual(told, expected);
});
