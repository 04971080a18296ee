// The data of the page, which stand in it with each text once, as the other scripts use them.
const report = (() => {
  const packed = JSON.parse(document.getElementById("data").textContent);
  const { texts, snapshot, map } = packed;

  const testOf = ({ test, first = "0x0", last = "0x0", bytes, negated = false }) => ({
    test,
    first: BigInt(first),
    last: BigInt(last),
    bytes: texts[bytes] ?? "",
    negated,
  });
  const conditions = snapshot.conditions.map(({ field, text, holds, asksOf, tests = [], ...test }) => ({
    field,
    text: texts[text],
    holds,
    asksOf,
    tests: tests.map(testOf),
    ...testOf(test),
  }));
  const filters = snapshot.filters.map(({ hard = false, inForce = true, passive = false, ...filter }) => ({
    ...filter,
    hard,
    inForce,
    passive,
    name: texts[filter.name],
    layer: texts[filter.layer],
    owner: snapshot.owners[filter.owner],
    sublayer: snapshot.sublayers[filter.sublayer].key,
    weight: BigInt(filter.weight),
    conditions: filter.conditions.map((index) => conditions[index]),
  }));

  const classOf = ({ text, intervals = [], masked = [], applications = [], endings = [], example, ...rest }) => ({
    ...rest,
    text: texts[text],
    intervals: intervals.map((ends) => ends.map(BigInt)),
    masked,
    applications: applications.map((index) => texts[index]),
    endings: endings.map((index) => texts[index]),
    example: typeof example === "number" ? texts[example] : example,
  });
  const targetOf = (number) => (number < 0 ? { verdict: -1 - number } : { node: number });

  /** A node: its field, the target of most classes, then class and target of each other. */
  function nodeOf([field, most, ...others], fields) {
    const targets = Array(fields[field].classes.length).fill(targetOf(most));
    for (let i = 0; i < others.length; i += 2) {
      targets[others[i]] = targetOf(others[i + 1]);
    }
    return { field, targets };
  }

  const sections = map.sections.map((section) => ({
    ...section,
    fields: section.fields.map(({ field, classes }) => ({ field, classes: classes.map(classOf) })),
    nodes: section.nodes.map((node) => nodeOf(node, section.fields)),
    root: targetOf(section.root),
  }));

  return {
    ...packed,
    applications: packed.applications.map(({ id, text }) => ({ id: texts[id], text })),
    snapshot: { sublayers: snapshot.sublayers, owners: snapshot.owners, filters },
    map: { verdicts: map.verdicts, sections },
    findings: packed.findings.map(({ places, ...finding }) => ({
      ...finding,
      places: places.map((indices) => indices.map((index) => filters[index])),
    })),
  };
})();
