// The part of a section's map that a table shows: a diagram of the table's fields alone.
const diagram = (() => {
  /**
   * Makes diagrams whose nodes and leaves are equal only if they are the same object. A leaf has the verdict for the
   * ordinary values of all fields that are no axis, and the names of those with which another value may change it.
   */
  function makeStore() {
    const made = new Map();
    const keep = (key, object) => {
      if (!made.has(key)) {
        made.set(key, { ...object, id: made.size });
      }
      return made.get(key);
    };
    const leaf = (verdict, varying) => {
      const names = [...new Set(varying)].sort();
      return keep(`${verdict}:${names.join("+")}`, { verdict, varying: names });
    };
    /** A node; targets of classes that are left out are undefined. */
    const node = (field, targets) => {
      const present = targets.filter((target) => target !== undefined);
      return present.every((target) => target === present[0])
        ? present[0]
        : keep(`${field}>${targets.map((target) => target?.id).join()}`, { field, targets });
    };
    const merged = new Map();
    /** The diagram of the ordinary value of a field with what another value of it may change. */
    function merge(plain, other, name) {
      if (plain === other) {
        return plain;
      }
      const key = `${plain.id} ${other.id} ${name}`;
      if (!merged.has(key)) {
        merged.set(key, mergeNew(plain, other, name));
      }
      return merged.get(key);
    }
    function mergeNew(plain, other, name) {
      const field = Math.min(plain.field ?? Infinity, other.field ?? Infinity);
      if (field === Infinity) {
        const isSame = plain.verdict === other.verdict;
        return leaf(plain.verdict, [...plain.varying, ...other.varying, ...(isSame ? [] : [name])]);
      }
      const at = (some, index) => (some.field === field ? some.targets[index] : some);
      const { targets } = plain.field === field ? plain : other;
      return node(
        field,
        targets.map((target, index) => target && merge(at(plain, index), at(other, index), name)),
      );
    }
    return { leaf, node, merge };
  }

  /**
   * The diagram of some fields of a section. `chosen` has a class for the fields that are fixed, `plain` the class of
   * the ordinary value of each, `shown` the classes of each axis that the table shows.
   */
  function restrict(section, { store, plain, chosen, shown }) {
    const found = new Map();
    function visit(target) {
      if (target.node === undefined) {
        return store.leaf(target.verdict, []);
      }
      if (!found.has(target.node)) {
        found.set(target.node, visitNode(section.nodes[target.node]));
      }
      return found.get(target.node);
    }
    function visitNode({ field, targets }) {
      if (chosen.has(field)) {
        return visit(targets[chosen.get(field)]);
      }
      if (shown.has(field)) {
        const isShown = new Set(shown.get(field));
        return store.node(
          field,
          targets.map((target, index) => (isShown.has(index) ? visit(target) : undefined)),
        );
      }
      const { field: name, classes } = section.fields[field];
      const others = targets.filter((_, index) => index !== plain[field] && classes[index].example !== null).map(visit);
      return [...new Set(others)].reduce((sum, other) => store.merge(sum, other, name), visit(targets[plain[field]]));
    }
    return visit(section.root);
  }

  /** The leaf that some classes lead to, given by field. */
  function leafAt(root, classes) {
    let place = root;
    while (place.targets !== undefined) {
      place = place.targets[classes.get(place.field)];
    }
    return place;
  }

  /** The nodes of one field below some roots. */
  function nodesOf(roots, field) {
    const seen = new Set();
    const visit = (place) => {
      if (place !== undefined && !seen.has(place)) {
        seen.add(place);
        place.targets?.forEach(visit);
      }
    };
    roots.forEach(visit);
    return [...seen].filter((place) => place.field === field);
  }

  /** Groups those of the classes of a field that lead to the same places from everywhere. */
  function groupClasses(roots, field, classes) {
    const nodes = nodesOf(roots, field);
    const groups = new Map();
    for (const index of classes) {
      const look = nodes.map(({ targets }) => targets[index].id).join();
      groups.set(look, [...(groups.get(look) ?? []), index]);
    }
    return [...groups.values()];
  }

  return { makeStore, restrict, leafAt, groupClasses };
})();
