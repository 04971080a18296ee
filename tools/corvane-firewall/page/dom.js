// Makes elements; has the words and signs of verdicts, and the names of filters.
const dom = (() => {
  /** An element. Its texts never become markup, because other programs choose the names of filters. */
  function make(tag, attributes = {}, ...children) {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
      element.setAttribute(name, value);
    }
    element.append(...children.filter((child) => child !== undefined));
    return element;
  }

  const builders = new WeakMap();
  /** Makes what is inside a folded part, unless that has been done. */
  function fill(details) {
    const build = builders.get(details);
    builders.delete(details);
    if (build !== undefined) {
      details.append(...build());
    }
  }

  /** A part that is folded, unless it has the attribute open, and whose inside is made when it is opened. */
  function folded(attributes, summary, build) {
    const details = make("details", attributes, make("summary", {}, ...[summary].flat()));
    builders.set(details, build);
    if (details.open) {
      fill(details);
    }
    details.addEventListener("toggle", () => details.open && fill(details));
    return details;
  }

  function unfold(details) {
    fill(details);
    details.open = true;
  }

  const signs = { permit: "✓", block: "✕", depends: "?" };
  const words = { permit: "permitted", block: "blocked", depends: "it depends" };
  const counted = (count, noun) => `${count} ${noun}${count === 1 ? "" : "s"}`;

  const sublayerText = ({ name, weight, listed }) => `“${name}” (weight ${listed ? weight : "unknown"})`;
  const conditionsText = ({ conditions }) =>
    conditions.length === 0 ? "every connection" : conditions.map(({ text }) => text).join(" and ");
  const actionText = ({ hard, action }) =>
    (hard && action === "PERMIT" ? "hard " : "") + action.toLowerCase().replace("callout_", "callout: ");

  return { make, folded, unfold, signs, words, counted, sublayerText, conditionsText, actionText };
})();
