// Shows the filters of each layer in the order of their turn, and what a connection meets of them.
const ladder = (() => {
  const { make, folded, counted, sublayerText, conditionsText, actionText } = dom;
  /** As many filters of others in a row, that fare alike, stand folded. */
  const fewestFolded = 4;

  const names = [4, 6].flatMap((version) =>
    ["ALE_AUTH_CONNECT_V", "ALE_AUTH_RECV_ACCEPT_V", "ALE_FLOW_ESTABLISHED_V"].map((name) => name + version),
  );
  const markTexts = { deciding: "▶ decides", outranked: "▷ comes too late", unjudged: "? only the engine" };

  /** The filters that a connection meets, each with its mark. */
  function marksOf(rung) {
    const marks = new Map();
    rung?.unjudged.forEach((filter) => marks.set(filter, "unjudged"));
    rung?.outranked.forEach((filter) => marks.set(filter, "outranked"));
    return rung?.deciding === undefined ? marks : marks.set(rung.deciding, "deciding");
  }

  function showFilter(mark, filter) {
    return make(
      "li",
      mark === "" ? {} : { class: mark },
      make("span", { class: "mark" }, markTexts[mark] ?? ""),
      make("span", {}, actionText(filter)),
      make(
        "span",
        {
          class: "code",
          title: `filter ${filter.id} “${filter.name}” of ${filter.owner.name}, weight ${filter.weight}`,
        },
        `${filter.id}  ${conditionsText(filter)}`,
      ),
    );
  }

  /** Filters one after the other that have the same owner and the same mark. */
  function runsOf(filters, marks) {
    const runs = [];
    for (const filter of filters) {
      const mark = marks.get(filter) ?? "";
      const last = runs.at(-1);
      if (last?.owner === filter.owner && last.mark === mark) {
        last.filters.push(filter);
      } else {
        runs.push({ owner: filter.owner, mark, filters: [filter] });
      }
    }
    return runs;
  }

  function showRun({ owner, mark, filters }) {
    if (owner.ours || mark === "deciding" || filters.length < fewestFolded) {
      return filters.map((filter) => showFilter(mark, filter));
    }
    const summary = [
      make("span", { class: "mark" }, markTexts[mark] ?? ""),
      ` ${counted(filters.length, "filter")} of ${owner.name}`,
    ];
    const inside = () => [make("ol", { class: "rung" }, ...filters.map((filter) => showFilter(mark, filter)))];
    return [make("li", { class: `run ${mark}` }, folded({}, summary, inside))];
  }

  function showRungs(rungs, passed) {
    return rungs.flatMap(({ sublayer, filters }) => {
      const marks = marksOf(passed?.rungs.find((rung) => rung.sublayer === sublayer));
      return [
        make("h3", {}, sublayerText(sublayer)),
        make("ol", { class: "rung" }, ...runsOf(filters, marks).flatMap(showRun)),
      ];
    });
  }

  /** A part for each layer; those that a connection passed are open. */
  function show(snapshot, traced) {
    return names.map((layer) => {
      const passed = traced.find((one) => one.layer === layer);
      const rungs = policy.ladderOf(snapshot, layer);
      const count = rungs.reduce((sum, { filters }) => sum + filters.length, 0);
      const summary = `${layer}: ${counted(count, "filter")} in ${counted(rungs.length, "sublayer")}`;
      return folded(passed === undefined ? {} : { open: "" }, summary, () => showRungs(rungs, passed));
    });
  }

  return { show };
})();
