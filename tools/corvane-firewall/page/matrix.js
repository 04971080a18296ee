// Shows the verdicts of a section as a table of buttons.
const matrix = (() => {
  const { make, signs, words, counted } = dom;
  const mostCells = 2000;

  function cellButton({ map, section, shorten, askAbout }, { flags, portName }, groups, cell) {
    const { verdict } = map.verdicts[cell.verdict];
    const exception = cell.varying.length > 0 ? `, but not for every ${cell.varying.join(", ")}` : "";
    const [row, intf, application, port] = groups.map(({ text }) => shorten(text));
    const [end, itsPort] = section.direction === "inbound" ? ["source", portName] : ["destination", "port"];
    const label = `${words[verdict]}${exception}: ${end} ${row}, interface ${intf}, application ${application}, ${itsPort} ${port}`;
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
        row.append(make("th", { colspan: span, scope: "colgroup", title: text }, cut(shorten(text), 3)));
      }
    }
    return row;
  }

  function headOf(shorten, { portName, interfaces, applications, ports }) {
    const head = make("thead");
    head.append(headRow(shorten, "interface", interfaces, 1, applications.length * ports.length));
    head.append(headRow(shorten, "application", applications, interfaces.length, ports.length));
    head.append(headRow(shorten, portName, ports, interfaces.length * applications.length, 1));
    return head;
  }

  /** The rows of a slice, as many as there is place for. */
  function appendRows(body, context, { portName }, { flags, rows, cellAt }, columns) {
    const most = Math.max(10, Math.floor(mostCells / columns.length));
    for (const row of rows.slice(0, most)) {
      const cells = columns
        .map((column) => [row, ...column])
        .map((groups) => make("td", {}, cellButton(context, { flags, portName }, groups, cellAt(...groups))));
      const name = (flags === 1n ? "loopback: " : "") + cut(row.text, 6);
      body.append(make("tr", {}, make("th", { scope: "row", title: row.text }, name), ...cells));
    }
    if (rows.length > most) {
      const text = `and ${counted(rows.length - most, "more row")}: ask above about an address`;
      body.append(make("tr", {}, make("th", { scope: "row" }, text)));
    }
  }

  function narrowedText({ narrowed, applications, interfaces }, shorten) {
    const values = { application: applications[0], interface: interfaces[0] };
    const named = narrowed.map((name) => `${name} “${shorten(values[name].text)}”`).join(" and ");
    return `Shown for ${named}, as the box above says; for all of them the table would be too wide.`;
  }

  /**
   * The table of a section: ordinary connections, then those over loopback if flags make a difference. One that would
   * be too wide is for what the box asks about, and says so.
   */
  function tableOf(context) {
    const { section, ordinary, asked, shorten } = context;
    const isFlagged = section.fields.some(({ field }) => field === "flags");
    const shown = tables.of(section, ordinary, isFlagged ? [0n, 1n] : [0n], asked);
    const columns = shown.interfaces.flatMap((intf) =>
      shown.applications.flatMap((application) => shown.ports.map((port) => [intf, application, port])),
    );
    const body = make("tbody");
    shown.slices.forEach((slice) => appendRows(body, context, shown, slice, columns));
    const table = make("table", {}, headOf(shorten, shown), body);
    if (shown.narrowed.length > 0) {
      table.prepend(make("caption", {}, narrowedText(shown, shorten)));
    }
    table.addEventListener("keydown", moveInTable);
    table.querySelector(".cell").tabIndex = 0;
    return table;
  }

  /** A list of values, of which the first ones are named. */
  function cut(text, most) {
    const values = text.split(", ");
    return values.length > most ? `${values.slice(0, most - 1).join(", ")} and ${values.length - most + 1} more` : text;
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
