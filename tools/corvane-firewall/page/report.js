// Fills the page, and answers what its box asks.
(() => {
  const { snapshot, map } = report;
  const { make, folded, unfold, signs, words, counted, sublayerText, conditionsText } = dom;
  const byId = (id) => document.getElementById(id);

  // ---- Names

  const capital = (text) => text[0].toUpperCase() + text.slice(1);
  const fileName = (path) => path.split("\\").at(-1);
  const shortNames = new Map(report.applications.map(({ text }) => [text, fileName(text)]));
  /** Replaces each path by its file name, unless two paths have the same file name. */
  function shorten(text) {
    const names = [...shortNames.values()];
    return [...shortNames].reduce(
      (short, [path, name]) => (names.indexOf(name) === names.lastIndexOf(name) ? short.replaceAll(path, name) : short),
      text,
    );
  }

  const interfaceNames = new Map(report.interfaces.map(({ luid, name }) => [luid, name]));
  for (const { conditions } of snapshot.filters) {
    for (const { field, test, first, last } of conditions) {
      const luid = String(first);
      if (field.endsWith("_INTERFACE") && test === "in-interval" && first === last && !interfaceNames.has(luid)) {
        interfaceNames.set(luid, luid);
      }
    }
  }

  // ---- Connections

  const number = (value) => (value === null ? undefined : BigInt(value));
  const ordinary = report.ordinary.map((connection) => ({
    direction: connection.direction,
    ipVersion: connection.ipVersion,
    protocol: number(connection.protocol),
    "local address": policy.parseAddress(connection.localAddress).number,
    "remote address": policy.parseAddress(connection.remoteAddress).number,
    "local port": number(connection.localPort),
    "remote port": number(connection.remotePort),
    application: connection.application,
    interface: number(connection.interface),
    "arrival interface": number(connection.arrivalInterface),
    "next-hop interface": number(connection.nextHopInterface),
    flags: number(connection.flags),
  }));
  const ordinaryOf = (direction, ipVersion) =>
    ordinary.find((connection) => connection.direction === direction && connection.ipVersion === ipVersion);

  function portOf(id) {
    const text = byId(id).value.trim();
    return /^\d{1,5}$/.test(text) && Number(text) < 65536 ? BigInt(text) : undefined;
  }

  /** The connection that the box describes, or what is wrong with its values. */
  function readBox() {
    const address = policy.parseAddress(byId("remote").value.trim());
    if (address === undefined) {
      return { problem: "That is no address: type one such as 10.0.0.1 or fe80::1." };
    }
    const [remotePort, localPort] = [portOf("port"), portOf("local-port")];
    if (remotePort === undefined || localPort === undefined) {
      return { problem: "Ports are numbers from 0 to 65535." };
    }
    const direction = byId("direction").value;
    const connection = { ...ordinaryOf(direction, address.ipVersion), "remote address": address.number };
    const protocol = byId("protocol").value;
    const isV4 = address.ipVersion === 4;
    // The engine keeps the ICMP type in the field of the local port, and the code in that of the remote port.
    connection["remote port"] = protocol === "icmp" ? 0n : remotePort;
    connection["local port"] = protocol === "icmp" ? (isV4 ? 8n : 128n) : localPort;
    connection.protocol = protocol === "icmp" ? (isV4 ? 1n : 58n) : BigInt(protocol);
    connection.application = byId("application").value || connection.application;
    connection.interface = BigInt(byId("interface").value || connection.interface);
    connection[direction === "outbound" ? "next-hop interface" : "arrival interface"] = connection.interface;
    connection.flags = byId("loopback").checked ? 1n : 0n;
    showFurtherFields(connection);
    readFurtherFields(connection);
    return { connection };
  }

  // ---- The box

  /** What the last answer was about. */
  let asked;

  /** Fields that have a place of their own in the box, or follow from what stands there. */
  const boxFields = new Set(Object.keys(ordinary[0]).filter((name) => name !== "local address" && name !== "flags"));
  const boxWords = [0n, 1n];

  /** Whether the box has no other place for what a section's map tells apart by a field. */
  function isFurther(field) {
    const reached = new Set(boxWords.map((word) => policy.classOf(field, word)));
    return field.field === "flags" ? field.classes.some((_, i) => !reached.has(i)) : !boxFields.has(field.field);
  }

  function furtherField({ field, classes }) {
    const list = make("select", { "data-field": field }, make("option", { value: "" }, "ordinary"));
    for (const { example, text } of classes) {
      list.append(make("option", { value: example ?? "unset" }, text));
    }
    return make("label", {}, capital(field), list);
  }

  /** Shows a field for all else that the map of the box's section tells apart. */
  function showFurtherFields({ direction, ipVersion }) {
    const name = `${direction}-${ipVersion}`;
    const place = byId("further");
    if (place.dataset.section !== name) {
      place.dataset.section = name;
      const { fields } = policy.sectionOf(map, { direction, ipVersion });
      place.replaceChildren(...fields.filter(isFurther).map(furtherField));
    }
  }

  function readFurtherFields(connection) {
    for (const { dataset, value } of byId("further").querySelectorAll("select")) {
      if (value !== "") {
        connection[dataset.field] = value === "unset" ? undefined : BigInt(value);
      }
    }
  }

  function filterText({ id, name, action, hard, owner }) {
    const kind =
      action === "BLOCK" || action === "PERMIT" ? `${hard ? "hard" : "soft"} ${action.toLowerCase()}` : "callout";
    return `${kind} of filter ${id} “${name}”${owner.ours ? "" : ` of ${owner.name}`}`;
  }

  /** As many filters that make no difference are named before the others are folded. */
  const mostNamed = 3;
  const effectTexts = {
    overridden: (by) => `, overridden by the block of ${sublayerText(by)}`,
    ignored: (by) => `, ignored: ${sublayerText(by)} had decided for good`,
  };

  /** Filters of a sublayer in a line; of many, most are folded. */
  function listed(words, some) {
    const text = (part) => make("span", { class: "code" }, `${words} ${part.map(filterText).join(", ")}`);
    const [first, rest] = [some.slice(0, mostNamed), some.slice(mostNamed)];
    const more = () => rest.map((filter) => make("span", { class: "code" }, filterText(filter)));
    return [
      ...(first.length > 0 ? [text(first)] : []),
      ...(rest.length > 0 ? [folded({}, `and ${rest.length} more`, more)] : []),
    ];
  }

  /** What a sublayer decides. Filters that cannot be judged are named where they may change the layer's action. */
  function showRung({ sublayer, deciding, outranked, unjudged, effect, by }, isSure) {
    const item = make("li", { class: effect });
    if (deciding === undefined) {
      item.append(make("span", { class: "ineffective" }, `${sublayerText(sublayer)}: no filter matches for certain`));
    } else {
      const text = `: ${filterText(deciding)}${effectTexts[effect]?.(by) ?? ""}`;
      item.append(make("span", effect === "stands" ? {} : { class: "ineffective" }, sublayerText(sublayer), text));
      item.append(make("span", { class: "code" }, `matches ${conditionsText(deciding)}`));
    }
    item.append(...listed("outranks", outranked), ...listed("only the engine can judge", isSure ? [] : unjudged));
    return item;
  }

  function showLayer({ layer, rungs, action }) {
    const isSure = action !== undefined;
    const speaks = ({ deciding, unjudged }) => deciding !== undefined || (!isSure && unjudged.length > 0);
    const silent = rungs.filter((rung) => !speaks(rung)).map(({ sublayer }) => sublayerText(sublayer));
    return [
      make("h3", {}, `${layer}: ${action ?? "only the engine can judge"}`),
      make("ol", { class: "trace" }, ...rungs.filter(speaks).map((rung) => showRung(rung, isSure))),
      silent.length > 0 ? make("p", { class: "quiet" }, `No filter decides in ${silent.join(", ")}.`) : undefined,
      rungs.length === 0 ? make("p", { class: "quiet" }, "No filter here: the engine permits.") : undefined,
    ].filter((part) => part !== undefined);
  }

  function showOutcomes(verdict) {
    return (verdict.outcomes ?? []).map(({ readings, verdict: outcome }) => {
      const choice = Object.entries(readings)
        .map(([name, reading]) => `${name} = ${reading}`)
        .join(", ");
      const kind = outcome ?? "depends";
      const text = outcome === null ? "only the engine can judge" : words[outcome];
      return make("p", {}, make("span", { class: `badge tint ${kind}` }, `${signs[kind]} ${text}`), choice);
    });
  }

  function connectionText(connection) {
    const address = policy.formatAddress(connection.ipVersion, connection["remote address"]);
    const application = report.applications.find(({ id }) => id === connection.application);
    return [
      `${connection.direction} IPv${connection.ipVersion}`,
      `protocol ${connection.protocol}`,
      `remote ${connection.ipVersion === 6 ? `[${address}]` : address}:${connection["remote port"]}`,
      `local port ${connection["local port"]}`,
      `interface ${interfaceNames.get(String(connection.interface)) ?? "that no filter names"}`,
      `application ${application?.text ?? "that no filter names"}`,
      ...(connection.flags === 1n ? ["loopback"] : []),
    ].join(", ");
  }

  function showAnswer() {
    const { connection, problem } = readBox();
    const answer = byId("answer");
    if (problem !== undefined) {
      answer.replaceChildren(make("p", { class: "verdict tint depends", id: "verdict" }, problem));
      return;
    }
    const verdict = policy.verdictOf(map, connection);
    const layers = policy.trace(snapshot, connection);
    answer.replaceChildren(
      make(
        "p",
        { class: `verdict tint ${verdict.verdict}`, id: "verdict", "data-verdict": verdict.verdict },
        `${signs[verdict.verdict]} ${words[verdict.verdict]}`,
        make("small", {}, connectionText(connection)),
      ),
      ...showOutcomes(verdict),
      ...layers.flatMap(showLayer),
    );
    byId("ladders").replaceChildren(...ladder.show(snapshot, layers));
    asked = connection;
    maps.forEach(({ part, draw }) => part.open && draw());
  }

  function fillBox() {
    for (const [luid, name] of interfaceNames) {
      byId("interface").append(make("option", { value: luid }, name));
    }
    byId("interface").append(make("option", { value: "", selected: "" }, "another"));
    for (const { id, text } of report.applications) {
      byId("application").append(make("option", { value: id, title: text }, shorten(text)));
    }
    byId("application").append(make("option", { value: "", selected: "" }, "another"));
    byId("box").addEventListener("submit", (event) => {
      event.preventDefault();
      showAnswer();
    });
    byId("box").addEventListener("change", showAnswer);
  }

  /** Sets a select element to a value, which is added if it is not among the options. */
  function select(id, value, text) {
    const element = byId(id);
    if (![...element.options].some((option) => option.value === value)) {
      element.append(make("option", { value }, text));
    }
    element.value = value;
  }

  const portIds = { "remote port": "port", "local port": "local-port" };
  /** Fills the box with the connection of a cell. */
  function askAbout(section, flags, [row, intf, application, port]) {
    const { direction, ipVersion } = section;
    const ordinaryConnection = ordinaryOf(direction, ipVersion);
    const valueOf = ({ example }, name) => (example === undefined ? ordinaryConnection[name] : BigInt(example));
    byId("remote").value = policy.formatAddress(ipVersion, valueOf(row, "remote address"));
    const [itsPort, otherPort] =
      direction === "inbound" ? ["local port", "remote port"] : ["remote port", "local port"];
    byId(portIds[itsPort]).value = String(valueOf(port, itsPort));
    byId(portIds[otherPort]).value = String(ordinaryConnection[otherPort]);
    select("direction", direction);
    select("protocol", "6");
    select("interface", String(intf.example ?? ""), intf.text);
    select("application", application.example ?? "", application.text);
    byId("loopback").checked = flags === 1n;
    byId("further")
      .querySelectorAll("select")
      .forEach((list) => (list.value = ""));
    showAnswer();
    byId("ask").scrollIntoView();
  }

  // ---- The map

  function showLegend() {
    for (const [kind, sign] of Object.entries(signs)) {
      const word = kind === "depends" ? "depends on an open rule, or on what only the engine can judge" : words[kind];
      byId("legend").append(make("span", {}, make("b", { class: `tint ${kind}` }, sign), ` ${word}`));
    }
    const star = " another protocol, port or other field may fare otherwise; shown is TCP";
    byId("legend").append(make("span", {}, make("b", {}, "*"), star));
  }

  function sectionText({ direction, ipVersion, fields }) {
    const names = fields.map(({ field }) => field).join(", ");
    return `${capital(direction)} IPv${ipVersion}: ${names === "" ? "all connections fare alike" : `told apart by ${names}`}`;
  }

  /** A section's table, which is made when it is opened. A narrowed one is made anew when the box has other values. */
  function mapOf(section) {
    const { direction, ipVersion } = section;
    const place = make("div", { class: "scroll" });
    let shownFor;
    const draw = () => {
      const key = `${asked.application} ${asked.interface}`;
      if (shownFor === undefined || (shownFor !== key && place.querySelector("caption") !== null)) {
        shownFor = key;
        const ordinary = ordinaryOf(direction, ipVersion);
        place.replaceChildren(matrix.tableOf({ map, section, ordinary, asked, shorten, askAbout }));
      }
    };
    const attributes = { class: "map", "data-section": `${direction}-${ipVersion}` };
    const part = folded(attributes, sectionText(section), () => [place]);
    part.addEventListener("toggle", () => part.open && draw());
    return { part, draw };
  }

  const maps = map.sections.map(mapOf);

  // ---- Filters

  function showFilters() {
    const { count, parts } = filters.show(snapshot, byId("search").value);
    byId("filter-count").textContent = count;
    byId("filter-list").replaceChildren(...parts);
  }

  // ---- The page

  function setTheme(theme) {
    document.documentElement.dataset.theme = theme;
    byId("theme").textContent = theme === "dark" ? "Light" : "Dark";
    byId("theme").setAttribute("aria-label", `Show the page ${theme === "dark" ? "light" : "dark"}`);
  }

  /** For whom and where the maps were made, if they were made for somebody. */
  function showCircumstances() {
    const told = Object.entries(report.circumstances ?? {}).map(([name, text]) => `${name} ${text}`);
    byId("circumstances").hidden = told.length === 0;
    byId("circumstances").textContent = `Answers and maps are for connections ${told.join(", ")}.`;
  }

  function showAbout() {
    const engines = {
      system: "This machine's filtering engine",
      emulated: "The emulated filtering engine",
      dump: "The filtering engine of a dump",
    };
    const engine = engines[report.engine];
    const amounts = `${counted(snapshot.filters.length, "filter")} in ${counted(snapshot.sublayers.length, "sublayer")}`;
    const inferred = report.isOrderInferred ? ", whose order is inferred from that of the filters" : "";
    byId("about").textContent = `${engine}, ${report.written}: ${amounts}${inferred}. Tool version ${report.version}.`;
  }

  const systemTheme = matchMedia("(prefers-color-scheme: dark)");
  setTheme(systemTheme.matches ? "dark" : "light");
  systemTheme.addEventListener("change", () => setTheme(systemTheme.matches ? "dark" : "light"));
  byId("theme").addEventListener("click", () =>
    setTheme(document.documentElement.dataset.theme === "dark" ? "light" : "dark"),
  );
  /** On paper everything is open but the long lists of others' filters. */
  addEventListener("beforeprint", () => {
    maps.forEach(({ part, draw }) => {
      unfold(part);
      draw();
    });
    let closed;
    while ((closed = document.querySelector("details:not([open], #filter-list *, .run *)")) !== null) {
      unfold(closed);
    }
  });

  showAbout();
  showCircumstances();
  fillBox();
  showLegend();
  byId("matrices").replaceChildren(...maps.map(({ part }) => part));
  byId("map-text").textContent = report.mapText;
  byId("promise-list").append(...results.promises(report.promises));
  byId("finding-list").append(...results.findings(report.findings));
  byId("rule-list").append(...results.rules(report.assumptions));
  byId("search").addEventListener("input", showFilters);
  showFilters();
  showAnswer();
})();
