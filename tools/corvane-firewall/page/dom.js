// Makes elements; has the words and signs of verdicts.
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

  const signs = { permit: "✓", block: "✕", depends: "?" };
  const words = { permit: "permitted", block: "blocked", depends: "it depends" };
  const counted = (count, noun) => `${count} ${noun}${count === 1 ? "" : "s"}`;

  return { make, signs, words, counted };
})();
