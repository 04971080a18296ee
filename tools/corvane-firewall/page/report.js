(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const { snapshot, map } = data;
  const { make, signs, words, counted } = dom;
  const byId = (id) => document.getElementById(id);

  // ---- Names

  const fileName = (path) => path.split("\\").at(-1);
  const shortNames = new Map(data.applications.map(({ text }) => [text, fileName(text)]));
  /** Replaces each path by its file name, unless two paths have the same file name. */
  function shorten(text) {
    const names = [...shortNames.values()];
    return [...shortNames].reduce(
      (short, [path, name]) => (names.indexOf(name) === names.lastIndexOf(name) ? short.replaceAll(path, name) : short),
      text,
    );
  }

  const interfaceNames = new Map(data.interfaces.map(({ luid, name }) => [luid, name]));
  for (const { conditions } of snapshot.filters) {
    for (const { field, test, first, last } of conditions) {
      if (field.endsWith("_INTERFACE") && test === "in-interval" && first === last && !interfaceNames.has(first)) {
        interfaceNames.set(first, first);
      }
    }
  }

  // ---- Connections

  const number = (value) => (value === null ? undefined : BigInt(value));
  const ordinary = data.ordinary.map((connection) => ({
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
    return { connection };
  }

  // ---- The box

  function sublayerText({ name, weight, listed }) {
    return `“${name}” (weight ${listed ? weight : "unknown"})`;
  }

  function filterText({ id, name, action, hard }) {
    const kind =
      action === "BLOCK" || action === "PERMIT" ? `${hard ? "hard" : "soft"} ${action.toLowerCase()}` : "callout";
    return `${kind} of filter ${id} “${name}”`;
  }

  function conditionsText({ conditions }) {
    return conditions.length === 0 ? "every connection" : conditions.map(({ text }) => text).join(" and ");
  }

  const effectTexts = {
    overridden: (by) => `, overridden by the block of ${sublayerText(by)}`,
    ignored: (by) => `, ignored: ${sublayerText(by)} had decided for good`,
  };

  function showRung({ sublayer, deciding, outranked, unjudged, effect, by }) {
    const item = make("li", { class: effect });
    if (deciding === undefined) {
      item.append(make("span", { class: "ineffective" }, `${sublayerText(sublayer)}: no filter matches`));
    } else {
      const text = `: ${filterText(deciding)}${effectTexts[effect]?.(by) ?? ""}`;
      item.append(make("span", effect === "stands" ? {} : { class: "ineffective" }, sublayerText(sublayer), text));
      item.append(make("span", { class: "code" }, `matches ${conditionsText(deciding)}`));
    }
    if (outranked.length > 0) {
      item.append(make("span", { class: "code" }, `outranks ${outranked.map(filterText).join(", ")}`));
    }
    for (const filter of unjudged) {
      item.append(make("span", { class: "code" }, `only the engine can judge ${filterText(filter)}`));
    }
    return item;
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
    const application = data.applications.find(({ id }) => id === connection.application);
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
      ...layers.flatMap(({ layer, rungs, action }) => [
        make("h3", {}, `${layer}: ${action ?? "only the engine can judge"}`),
        rungs.length === 0
          ? make("p", { class: "quiet" }, "No filter here: the engine permits.")
          : make("ol", { class: "trace" }, ...rungs.map(showRung)),
      ]),
    );
    showLadders(layers);
  }

  function fillBox() {
    for (const [luid, name] of interfaceNames) {
      byId("interface").append(make("option", { value: luid }, name));
    }
    byId("interface").append(make("option", { value: "", selected: "" }, "another"));
    for (const { id, text } of data.applications) {
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

  /** Fills the box with the connection of a cell. */
  function askAbout(section, flags, [row, intf, application, port]) {
    const ordinaryConnection = ordinaryOf(section.direction, section.ipVersion);
    const address = row.example === undefined ? ordinaryConnection["remote address"] : BigInt(row.example);
    byId("remote").value = policy.formatAddress(section.ipVersion, address);
    byId("port").value = String(port.example === undefined ? ordinaryConnection["remote port"] : BigInt(port.example));
    byId("local-port").value = String(ordinaryConnection["local port"]);
    select("direction", section.direction);
    select("protocol", "6");
    select("interface", intf.example ?? "", intf.text);
    select("application", application.example ?? "", application.text);
    byId("loopback").checked = flags === 1n;
    showAnswer();
    byId("ask").scrollIntoView();
  }

  // ---- The map

  function showMap() {
    for (const [kind, sign] of Object.entries(signs)) {
      const word = kind === "depends" ? "depends on an open rule, or on what only the engine can judge" : words[kind];
      byId("legend").append(make("span", {}, make("b", { class: `tint ${kind}` }, sign), ` ${word}`));
    }
    byId("legend").append(
      make(
        "span",
        {},
        make("b", {}, "*"),
        " another protocol, local port or other field may fare otherwise; shown is TCP",
      ),
    );
    for (const section of map.sections) {
      const title = `${section.direction} IPv${section.ipVersion}`;
      byId("matrices").append(
        make("h3", {}, title[0].toUpperCase() + title.slice(1)),
        make(
          "div",
          { class: "scroll" },
          matrix.tableOf({
            map,
            section,
            ordinary: ordinaryOf(section.direction, section.ipVersion),
            shorten,
            askAbout,
          }),
        ),
      );
    }
    byId("map-text").textContent = data.mapText;
  }

  // ---- Ladder, promises, findings, rules

  const markTexts = { deciding: "▶ decides", outranked: "▷ comes too late", unjudged: "? only the engine" };

  function markOf(rung, filter) {
    if (rung?.deciding === filter) {
      return "deciding";
    }
    return rung?.outranked.includes(filter) ? "outranked" : rung?.unjudged.includes(filter) ? "unjudged" : "";
  }

  function showLadders(traced) {
    const names = [4, 6].flatMap((version) =>
      ["ALE_AUTH_CONNECT_V", "ALE_AUTH_RECV_ACCEPT_V", "ALE_FLOW_ESTABLISHED_V"].map((name) => name + version),
    );
    const ladders = names.map((layer) => {
      const passed = traced.find((one) => one.layer === layer);
      const rungs = policy.ladderOf(snapshot, layer);
      const count = rungs.reduce((sum, { filters }) => sum + filters.length, 0);
      return make(
        "details",
        passed === undefined ? {} : { open: "" },
        make("summary", {}, `${layer}: ${counted(count, "filter")} in ${counted(rungs.length, "sublayer")}`),
        ...rungs.flatMap(({ sublayer, filters }) => {
          const rung = passed?.rungs.find((one) => one.sublayer === sublayer);
          return [
            make("h3", {}, sublayerText(sublayer)),
            make("ol", { class: "rung" }, ...filters.map((f) => showFilter(rung, f))),
          ];
        }),
      );
    });
    byId("ladders").replaceChildren(...ladders);
  }

  function showFilter(rung, filter) {
    const mark = markOf(rung, filter);
    const action = filter.action.toLowerCase().replace("callout_", "callout: ");
    return make(
      "li",
      mark === "" ? {} : { class: mark },
      make("span", { class: "mark" }, markTexts[mark] ?? ""),
      make("span", {}, `${filter.hard && filter.action === "PERMIT" ? "hard " : ""}${action}`),
      make(
        "span",
        { class: "code", title: `filter ${filter.id} “${filter.name}”, weight ${filter.weight}` },
        `${filter.id}  ${conditionsText(filter)}`,
      ),
    );
  }

  const stateKinds = { holds: "permit", broken: "block" };

  function showPromises() {
    const list = byId("promise-list");
    if (data.promises.length === 0) {
      list.append(
        make(
          "p",
          { class: "quiet" },
          "No feature was switched on by the run that wrote this page: nothing is promised.",
        ),
      );
    }
    for (const { feature, name, sentence, state, text } of data.promises) {
      const kind = stateKinds[state] ?? "depends";
      const told = make("div", {}, make("p", {}, sentence), make("p", { class: "quiet" }, `${feature}: ${name}`));
      if (state !== "holds") {
        told.append(make("details", {}, make("summary", {}, "Why"), make("pre", { tabindex: "0" }, text)));
      }
      const badge = make("span", { class: `badge tint ${kind}` }, `${signs[kind]} ${state}`);
      list.append(make("article", { class: "promise", "data-promise": name }, badge, told));
    }
  }

  function placeText({ filter, other, layer }) {
    const named = ({ id, name }) => `${id} “${name}”`;
    return `${named(filter)} at ${layer}${other === null ? "" : `, with ${named(other)}`}`;
  }

  function showFindings() {
    const list = byId("finding-list");
    const kinds = [...new Set(data.findings.map(({ kind }) => kind))];
    if (kinds.length === 0) {
      list.append(make("p", { class: "quiet" }, "Every filter says what it seems to say."));
    }
    for (const kind of kinds) {
      const ofKind = data.findings.filter((finding) => finding.kind === kind);
      const details = make("details", {}, make("summary", {}, `${kind}: ${counted(ofKind.length, "filter")}`));
      for (const reason of new Set(ofKind.map((finding) => finding.reason))) {
        const alike = ofKind.filter((finding) => finding.reason === reason);
        details.append(
          make(
            "div",
            { class: "finding" },
            make("p", {}, reason),
            make("p", { class: "quiet" }, `Clearer: ${alike[0].advice}.`),
            make("ul", {}, ...alike.map((finding) => make("li", {}, placeText(finding)))),
          ),
        );
      }
      list.append(details);
    }
  }

  function showRules() {
    for (const { name, question, readings } of data.assumptions) {
      byId("rule-list").append(make("dt", {}, make("code", {}, name), ` ${question}`));
      byId("rule-list").append(...readings.map((one) => make("dd", {}, make("code", {}, one.name), ` ${one.meaning}`)));
    }
  }

  // ---- The page

  function setTheme(theme) {
    document.documentElement.dataset.theme = theme;
    byId("theme").textContent = theme === "dark" ? "Light" : "Dark";
    byId("theme").setAttribute("aria-label", `Show the page ${theme === "dark" ? "light" : "dark"}`);
  }

  function showAbout() {
    const engines = {
      system: "This machine's filtering engine",
      emulated: "The emulated filtering engine",
      dump: "The filtering engine of a dump",
    };
    const engine = engines[data.engine];
    const amounts = `${counted(snapshot.filters.length, "filter")} in ${counted(snapshot.sublayers.length, "sublayer")}`;
    const inferred = data.isOrderInferred ? ", whose order is inferred from that of the filters" : "";
    byId("about").textContent = `${engine}, ${data.written}: ${amounts}${inferred}. Tool version ${data.version}.`;
  }

  const systemTheme = matchMedia("(prefers-color-scheme: dark)");
  setTheme(systemTheme.matches ? "dark" : "light");
  systemTheme.addEventListener("change", () => setTheme(systemTheme.matches ? "dark" : "light"));
  byId("theme").addEventListener("click", () =>
    setTheme(document.documentElement.dataset.theme === "dark" ? "light" : "dark"),
  );
  addEventListener("beforeprint", () =>
    document.querySelectorAll("details").forEach((details) => (details.open = true)),
  );
  showAbout();
  fillBox();
  showMap();
  showPromises();
  showFindings();
  showRules();
  showAnswer();
})();
