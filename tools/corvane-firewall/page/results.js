// Shows what was found when the page was written: promises, findings and the open rules of the engine.
const results = (() => {
  const { make, folded, signs, counted } = dom;
  const stateKinds = { holds: "permit", broken: "block" };
  const named = ({ id, name }) => `${id} “${name}”`;

  /** Whose filter breaks a promise, and for which connection. */
  function breakText({ filter, owner, connection }) {
    const by = filter ? `by filter ${named(filter)} of ${owner}` : "where no filter matches";
    return `Broken ${by}: ${connection.text ?? connection}`;
  }

  function promise({ feature, name, sentence, state, text, breaks = [] }) {
    const kind = stateKinds[state] ?? "depends";
    const told = make("div", {}, make("p", {}, sentence), make("p", { class: "quiet" }, `${feature}: ${name}`));
    told.append(...breaks.map((one) => make("p", { class: "breaks" }, breakText(one))));
    if (state !== "holds") {
      told.append(folded({}, "Why", () => [make("pre", { tabindex: "0" }, text)]));
    }
    const badge = make("span", { class: `badge tint ${kind}` }, `${signs[kind]} ${state}`);
    return make("article", { class: "promise", "data-promise": name }, badge, told);
  }

  function promises(all) {
    const nothing = "No feature was switched on by the run that wrote this page: nothing is promised.";
    return all.length === 0 ? [make("p", { class: "quiet" }, nothing)] : all.map(promise);
  }

  function placeText([filter, other]) {
    return `${named(filter)} at ${filter.layer}${other === undefined ? "" : `, with ${named(other)}`}`;
  }

  function finding({ reason, advice, places }) {
    return make(
      "div",
      { class: "finding" },
      make("p", {}, reason),
      make("p", { class: "quiet" }, `Clearer: ${advice}.`),
      make("ul", {}, ...places.map((place) => make("li", {}, placeText(place)))),
    );
  }

  function findings(all) {
    if (all.length === 0) {
      return [make("p", { class: "quiet" }, "Every filter says what it seems to say.")];
    }
    return [...new Set(all.map(({ kind }) => kind))].map((kind) => {
      const ofKind = all.filter((one) => one.kind === kind);
      const count = ofKind.reduce((sum, { places }) => sum + places.length, 0);
      return folded({}, `${kind}: ${counted(count, "filter")}`, () => ofKind.map(finding));
    });
  }

  function rules(assumptions) {
    return assumptions.flatMap(({ name, question, readings }) => [
      make("dt", {}, make("code", {}, name), ` ${question}`),
      ...readings.map((one) => make("dd", {}, make("code", {}, one.name), ` ${one.meaning}`)),
    ]);
  }

  return { promises, findings, rules };
})();
