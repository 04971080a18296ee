// Lists all filters by owner, and searches them.
const filters = (() => {
  const { make, folded, counted, conditionsText, actionText } = dom;
  /** As many of an owner are listed before the reader asks for more. */
  const firstListed = 100;

  const isPortOf = (port) => (condition) =>
    condition.field.endsWith("_PORT") && condition.first <= port && port <= condition.last;

  /** Whether a filter has a word: a number is its id, a port, or a word of its name; other words are parts of texts. */
  function has(filter, word) {
    const texts = [
      filter.name,
      filter.owner.name,
      filter.key,
      filter.layer,
      ...filter.conditions.map(({ text }) => text),
    ];
    if (!/^\d+$/.test(word)) {
      return texts.some((text) => text.toLowerCase().includes(word));
    }
    return (
      String(filter.id) === word ||
      filter.conditions.some(isPortOf(BigInt(word))) ||
      filter.name.split(/[^\d\p{L}]+/u).includes(word)
    );
  }

  /** The filters that have every word of a text. */
  function find(all, text) {
    const wanted = text.toLowerCase().split(/\s+/).filter(Boolean);
    return all.filter((filter) => wanted.every((word) => has(filter, word)));
  }

  function showFilter(filter, sublayers) {
    const sublayer = sublayers.find(({ key }) => key === filter.sublayer);
    const state = filter.inForce ? "" : ", not in force";
    return make(
      "li",
      {},
      make("span", {}, actionText(filter)),
      make(
        "div",
        {},
        make("span", {}, `${filter.id} “${filter.name}”`),
        make("span", { class: "code" }, `${filter.layer}, sublayer “${sublayer.name}”, key ${filter.key}${state}`),
        make("span", { class: "code" }, conditionsText(filter)),
      ),
    );
  }

  function showSome(some, sublayers) {
    const list = make(
      "ol",
      { class: "filters" },
      ...some.slice(0, firstListed).map((one) => showFilter(one, sublayers)),
    );
    if (some.length <= firstListed) {
      return [list];
    }
    const more = make("button", { type: "button", class: "more" }, `Show ${some.length - firstListed} more`);
    more.addEventListener("click", () => {
      list.append(...some.slice(firstListed).map((one) => showFilter(one, sublayers)));
      list.children[firstListed].tabIndex = -1;
      list.children[firstListed].focus();
      more.remove();
    });
    return [list, more];
  }

  /** A part for each owner, this product's first. Open are this product's, and all of a search that finds few. */
  function show({ filters: all, owners, sublayers }, text) {
    const found = find(all, text);
    const isSearch = text.trim() !== "";
    const byOwner = owners.map((owner) => ({ owner, some: found.filter((filter) => filter.owner === owner) }));
    const parts = byOwner
      .filter(({ some }) => some.length > 0)
      .sort((a, b) => b.owner.ours - a.owner.ours || b.some.length - a.some.length)
      .map(({ owner, some }) => {
        const isOpen = isSearch ? found.length <= firstListed : owner.ours;
        const summary = `${owner.name}: ${counted(some.length, "filter")}${owner.ours ? ", this product's" : ""}`;
        return folded(isOpen ? { open: "" } : {}, summary, () => showSome(some, sublayers));
      });
    const count = isSearch ? `${found.length} of ${counted(all.length, "filter")}` : counted(all.length, "filter");
    return { count, parts };
  }

  return { show };
})();
