// Asks the box of reports about connections.
import assert from "node:assert/strict";
import { ask, complaints, page, testOn } from "./support.js";

const both = ["fresh", "large"];

testOn(both, "nothing is loaded and nothing complains", async () => {
  await page.click("#theme");
  await ask({ remote: "10.0.0.1" });
  assert.deepEqual(complaints, []);
});

testOn(both, "the box blocks what the kill switch blocks, and names the filter", async () => {
  assert.equal(await ask({ remote: "1.1.1.1", port: "443" }), "block");
  assert.match(await page.textContent("#verdict"), /^✕ blocked/);
  const answer = await page.textContent("#answer");
  assert.match(answer, /ALE_AUTH_CONNECT_V4: block/);
  assert.match(answer, /“Corvane Kill Switch” \(weight 8\): hard block of filter \d+/);
  assert.match(answer, /matches every connection/);
});

testOn(both, "Enter in the box asks", async () => {
  await page.fill("#remote", "127.0.0.1");
  await page.press("#remote", "Enter");
  assert.equal(await page.getAttribute("#verdict", "data-verdict"), "permit");
});

testOn(both, "a verdict that depends on an open rule names each reading", async () => {
  await page.check("#loopback");
  assert.equal(await ask({ remote: "1.1.1.1" }), "depends");
  const answer = await page.textContent("#answer");
  assert.match(answer, /✓ permittedloopback-bits = alone/);
  assert.match(answer, /✕ blockedloopback-bits = accompanied/);
});

testOn(both, "the exempt application is free", async () => {
  assert.equal(await ask({ remote: "1.1.1.1", application: "notepad.exe" }), "permit");
});

testOn(both, "IPv6, protocols and ports lead to the rules for them", async () => {
  assert.equal(await ask({ remote: "2001:db8::1", port: "443" }), "block");
  assert.equal(await ask({ remote: "fe80::1", port: "53" }), "block");
  assert.equal(await ask({ remote: "fe80::1", port: "54" }), "permit");
});

testOn(both, "an inbound connection passes the layers of inbound ones", async () => {
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
  testOn(both, `the box says what is wrong with ${value}`, async () => {
    assert.equal(await ask({ [id]: value }), null);
    assert.match(await page.textContent("#verdict"), problem);
  });
}

testOn(["large"], "what others block stays blocked for the exempt application", async () => {
  const exempt = { port: "443", application: "notepad.exe" };
  assert.equal(await ask({ ...exempt, remote: "203.100.199.1" }), "block");
  assert.match(
    await page.textContent("#answer"),
    /“Nimbus web shield” \(weight 32771\): hard block of filter \d+ “Nimbus policy 1: .*” of Nimbus Endpoint Security/,
  );
  assert.equal(await ask({ ...exempt, remote: "203.99.199.1" }), "permit");
});

testOn(["large"], "a hard permit of another product passes the kill switch where connections are made", async () => {
  const tunnel = { protocol: "UDP", port: "51820", application: "harbour-agent.exe" };
  assert.equal(await ask({ ...tunnel, remote: "192.0.2.77" }), "depends");
  assert.match(
    await page.textContent("#answer"),
    /ALE_AUTH_CONNECT_V4: permit.*“Harbour tunnel” \(weight 65535\): hard permit/s,
  );
});

testOn(
  ["large-dump"],
  "an answer names the filters that only the engine can judge where they may change it",
  async () => {
    assert.equal(await ask({ remote: "1.1.1.1", direction: "inbound", "local-port": "1028" }), "depends");
    assert.match(
      await page.textContent("#answer"),
      /only the engine can judge soft permit of filter \d+ “Rule 5 of product 4 \(TCP-In\)” of Windows Firewall/,
    );
    assert.equal(await ask({ direction: "inbound", "local-port": "410" }), "block");
    assert.doesNotMatch(await page.textContent("#answer"), /only the engine/);
  },
);

testOn(["fresh"], "the box has no further field where the map needs none", async () => {
  assert.equal(await page.locator("#further select").count(), 0);
});

testOn(["large"], "the box has a field for all else that the map tells apart", async () => {
  await ask({ remote: "1.1.1.1", direction: "inbound" });
  const words = await page.locator('#further [data-field="flags"] option').allTextContents();
  assert.equal(words[0], "ordinary");
  assert.ok(words.length > 2, String(words));
  await page.selectOption('#further [data-field="flags"]', { index: words.length - 1 });
  assert.notEqual(await page.getAttribute("#verdict", "data-verdict"), null);
  assert.deepEqual(complaints, []);
});

testOn(["fresh", "large"], "the box says for whom and where the maps are made", async () => {
  assert.match(
    await page.textContent("#circumstances"),
    /^Answers and maps are for connections as a program of a signed-in user, user any, profile not given\.$/,
  );
});

testOn(["large-service"], "a report for a service on a public network answers for it", async () => {
  assert.match(
    await page.textContent("#circumstances"),
    /^Answers and maps are for connections as the service Dnscache, account NETWORK SERVICE, profile public\.$/,
  );
  assert.equal(await ask({ remote: "1.1.1.1", port: "90", application: "svchost.exe" }), "permit");
  assert.doesNotMatch(await page.textContent("#answer"), /only the engine/);
});
