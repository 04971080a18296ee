// Opens reports in a browser. The environment variable REPORTS names the folder in which scripts/test-page.sh has
// written them: fresh.html of a run with the kill switch, one exempt application and DHCP; fresh-several.html of one
// with these, leak protection, one application that others block, and Skein; large.html and large-several.html of the
// same runs on the machine of machine.js; dump.html and large-dump.html of dumps alone.
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { pathToFileURL } from "node:url";
import { chromium } from "playwright-core";

export const fileOf = (name) => join(process.env.REPORTS, `${name}.html`);

/** The page that is open, and what its console and its requests to elsewhere have said. */
export let page;
export let complaints;

let browser;
before(async () => {
  browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
});
after(() => browser.close());

export async function open(name, options = {}) {
  await page?.close();
  page = await browser.newPage(options);
  complaints = [];
  page.on("console", (message) => complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("request", (request) => request.url().startsWith("file:") || complaints.push(request.url()));
  await page.goto(pathToFileURL(fileOf(name)).href);
}

/** Opens a report whose data are changed first. */
export async function openChanged(name, change) {
  const [head, rest] = readFileSync(fileOf(name), "utf8").split('id="data">');
  const [text, ...tail] = rest.split("</script>");
  const data = JSON.parse(text);
  change(data);
  const changed = JSON.stringify(data).replaceAll("<", "\\u003c");
  writeFileSync(fileOf(`${name}-changed`), `${head}id="data">${[changed, ...tail].join("</script>")}`);
  await open(`${name}-changed`);
}

/** Opens the table of each section. */
export async function openMaps() {
  await page.evaluate(() => document.querySelectorAll(".map").forEach((map) => (map.open = true)));
  await page.waitForFunction(() => document.querySelectorAll(".map table").length === 4);
}

/** A test that runs once for each of some reports. */
export function testOn(names, title, body) {
  for (const name of names) {
    test(`${name}: ${title}`, async () => {
      await open(name);
      await body(name);
    });
  }
}

/** Fills the box, asks, and gives the verdict. */
export async function ask(fields) {
  for (const [id, value] of Object.entries(fields)) {
    await (["direction", "protocol", "application"].includes(id)
      ? page.selectOption(`#${id}`, { label: value })
      : page.fill(`#${id}`, value));
  }
  await page.click("#decide");
  return page.getAttribute("#verdict", "data-verdict");
}

export const table = (section) => page.locator(`.map[data-section="${section}"] table`);
export const rowNames = (section) => table(section).locator("tbody th").allTextContents();
export const rowOf = (section, name) =>
  table(section)
    .locator("tbody tr")
    .filter({ has: page.getByText(name, { exact: true }) });

/** The cells, of many every so many, whose verdict differs from the one that the box shows after a click on the cell. */
export const cellsThatLie = () =>
  page.locator(".cell").evaluateAll((buttons) =>
    buttons
      .filter((_, index) => index % Math.ceil(buttons.length / 300) === 0)
      .filter((button) => {
        button.click();
        return !button.classList.contains(document.getElementById("verdict").dataset.verdict);
      })
      .map((button) => button.title),
  );
