// Takes the picture for the README, of the report that REPORTS has of a large machine: npm run picture -- FILE.png
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import { chromium } from "playwright-core";

const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
const page = await browser.newPage({ viewport: { width: 1080, height: 1000 }, colorScheme: "light" });
await page.goto(pathToFileURL(join(process.env.REPORTS, "large.html")).href);
await page.fill("#remote", "203.100.199.1");
await page.selectOption("#application", { label: "notepad.exe" });
await page.click("#decide");
await page.screenshot({ path: process.argv[2] });
await browser.close();
