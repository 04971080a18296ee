// Takes the picture for the README, of the report that REPORT_OF_SEVERAL names: npm run picture -- FILE.png
import { pathToFileURL } from "node:url";
import { chromium } from "playwright-core";

const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox"] });
const page = await browser.newPage({ viewport: { width: 1080, height: 760 }, colorScheme: "light" });
await page.goto(pathToFileURL(process.env.REPORT_OF_SEVERAL).href);
await page.fill("#remote", "1.1.1.1");
await page.fill("#port", "53");
await page.click("#decide");
await page.screenshot({ path: process.argv[2] });
await browser.close();
