// Shows the verdicts of a section as a table of buttons.
const matrix = (() => {
  const { make, signs, words } = dom;

  function cellButton({ map, section, shorten, askAbout }, flags, groups, cell) {
    const { verdict } = map.verdicts[cell.verdict];
    const exception = cell.varying.length > 0 ? `, but not for every ${cell.varying.join(", ")}` : "";
    const [row, intf, application, port] = groups.map(({ text }) => shorten(text));
    const label = `${words[verdict]}${exception}: destination ${row}, interface ${intf}, application ${application}, port ${port}`;
    const button = make(
      "button",
      { type: "button", class: `cell tint ${verdict}`, title: label, "aria-label": label, tabindex: "-1" },
      signs[verdict] + (exception && "*"),
    );
    button.addEventListener("click", () => askAbout(section, flags, groups));
    return button;
  }

  function headRow(shorten, name, groups, repeat, span) {
    const row = make("tr", {}, make("th", { class: "axis", scope: "row" }, name));
    for (let i = 0; i < repeat; ++i) {
      for (const { text } of groups) {
        row.append(make("th", { colspan: span, scope: "colgroup", title: text }, shorten(text)));
      }
    }
    return row;
  }

  /** The table of a section: ordinary connections, then those over loopback if flags make a difference. */
  function tableOf(context) {
    const { section, ordinary, shorten } = context;
    const isFlagged = section.fields.some(({ field }) => field === "flags");
    const { interfaces, applications, ports, slices } = policy.matrixOf(section, ordinary, isFlagged ? [0n, 1n] : [0n]);
    const columns = interfaces.flatMap((intf) =>
      applications.flatMap((application) => ports.map((port) => [intf, application, port])),
    );
    const body = make("tbody");
    for (const { flags, rows, cellAt } of slices) {
      for (const row of rows) {
        const name = (flags === 1n ? "loopback: " : "") + destinationText(row);
        const cells = columns
          .map((column) => [row, ...column])
          .map((groups) => make("td", {}, cellButton(context, flags, groups, cellAt(...groups))));
        body.append(make("tr", {}, make("th", { scope: "row", title: row.text }, name), ...cells));
      }
    }
    const head = make("thead");
    head.append(headRow(shorten, "interface", interfaces, 1, applications.length * ports.length));
    head.append(headRow(shorten, "application", applications, interfaces.length, ports.length));
    head.append(headRow(shorten, "remote port", ports, interfaces.length * applications.length, 1));
    const table = make("table", { "data-section": `${section.direction}-${section.ipVersion}` }, head, body);
    table.addEventListener("keydown", moveInTable);
    table.querySelector(".cell").tabIndex = 0;
    return table;
  }

  function destinationText({ text }) {
    const values = text.split(", ");
    return values.length > 6 ? `${values.slice(0, 5).join(", ")} and ${values.length - 5} more` : text;
  }

  function moveInTable(event) {
    const steps = { ArrowLeft: [0, -1], ArrowRight: [0, 1], ArrowUp: [-1, 0], ArrowDown: [1, 0] };
    const step = steps[event.key];
    if (step === undefined || !event.target.matches(".cell")) {
      return;
    }
    event.preventDefault();
    const rows = [...event.currentTarget.tBodies[0].rows].map((row) => [...row.querySelectorAll(".cell")]);
    const y = rows.findIndex((row) => row.includes(event.target));
    const next = rows[y + step[0]]?.[rows[y].indexOf(event.target) + step[1]];
    if (next !== undefined) {
      event.target.tabIndex = -1;
      next.tabIndex = 0;
      next.focus();
    }
  }

  return { tableOf };
})();
