// What the engine does with a connection: the verdict comes from the exact map, the reasons from the filters.
// Numbers are BigInts. An application is given by the bytes of its id, in hexadecimal. A value that the engine
// does not know is undefined.
const policy = (() => {
  const fieldNames = {
    FLAGS: "flags",
    IP_LOCAL_INTERFACE: "interface",
    IP_ARRIVAL_INTERFACE: "arrival interface",
    IP_NEXTHOP_INTERFACE: "next-hop interface",
    ALE_APP_ID: "application",
    IP_PROTOCOL: "protocol",
    IP_LOCAL_PORT: "local port",
    IP_REMOTE_PORT: "remote port",
    IP_LOCAL_ADDRESS: "local address",
    IP_REMOTE_ADDRESS: "remote address",
  };

  function layersOf(direction, ipVersion) {
    const first = direction === "outbound" ? "ALE_AUTH_CONNECT_V" : "ALE_AUTH_RECV_ACCEPT_V";
    return [first + ipVersion, "ALE_FLOW_ESTABLISHED_V" + ipVersion];
  }

  // ---- Addresses

  function parseV4(text) {
    const parts = text.split(".");
    if (parts.length !== 4 || !parts.every((part) => /^(0|[1-9]\d{0,2})$/.test(part) && Number(part) < 256)) {
      return undefined;
    }
    return parts.reduce((number, part) => (number << 8n) | BigInt(part), 0n);
  }

  function parseV6(text) {
    const halves = text.split("::");
    if (halves.length > 2) {
      return undefined;
    }
    const groupsOf = (half) => {
      const groups = half === "" ? [] : half.split(":");
      const v4 = groups.length > 0 && groups.at(-1).includes(".") ? parseV4(groups.pop()) : undefined;
      return v4 === undefined ? groups : [...groups, (v4 >> 16n).toString(16), (v4 & 0xffffn).toString(16)];
    };
    const [head, tail] = [groupsOf(halves[0]), groupsOf(halves[1] ?? "")];
    const missing = 8 - head.length - tail.length;
    if (halves.length === 2 ? missing < 1 : missing !== 0) {
      return undefined;
    }
    const groups = [...head, ...Array(missing).fill("0"), ...tail];
    if (!groups.every((group) => /^[0-9a-f]{1,4}$/i.test(group))) {
      return undefined;
    }
    return groups.reduce((number, group) => (number << 16n) | BigInt("0x" + group), 0n);
  }

  /** The address that a text stands for, or undefined. */
  function parseAddress(text) {
    const v4 = parseV4(text);
    if (v4 !== undefined) {
      return { ipVersion: 4, number: v4 };
    }
    const v6 = text.includes(":") ? parseV6(text) : undefined;
    return v6 === undefined ? undefined : { ipVersion: 6, number: v6 };
  }

  function formatAddress(ipVersion, number) {
    if (ipVersion === 4) {
      return [24n, 16n, 8n, 0n].map((shift) => (number >> shift) & 0xffn).join(".");
    }
    const groups = Array.from({ length: 8 }, (_, i) => ((number >> BigInt(112 - 16 * i)) & 0xffffn).toString(16));
    const text = groups.join(":");
    const zeros = [...text.matchAll(/(?<![0-9a-f])0(:0)+(?![0-9a-f])/g)].map((match) => match[0]);
    const longest = zeros.reduce((best, run) => (run.length > best.length ? run : best), "");
    return longest === "" ? text : text.replace(new RegExp(`(^|:)${longest}(:|$)`), "::");
  }

  // ---- The map

  const withoutEnd = (id) => (id.endsWith("0000") ? id.slice(0, -4) : id);
  const endsWith = (id, ending) => withoutEnd(id).endsWith(withoutEnd(ending));
  const within = (number, [first, last]) => BigInt(first) <= number && number <= BigInt(last);

  function classOfApplication(classes, id) {
    const named = classes.findIndex((values) => values.applications.includes(id));
    if (named >= 0) {
      return named;
    }
    let longest = "";
    let found = classes.findIndex((values) => values.others);
    classes.forEach((values, index) => {
      for (const ending of values.endings.filter((text) => endsWith(id, text))) {
        if (ending.length > longest.length) {
          [longest, found] = [ending, index];
        }
      }
    });
    return found;
  }

  /** The index of the class that a field's value is in. */
  function classOf({ field, classes }, value) {
    if (value === undefined) {
      return classes.findIndex((values) => values.unset);
    }
    if (field === "application") {
      return classOfApplication(classes, value);
    }
    const listed = classes.findIndex((values) => values.intervals.some((interval) => within(value, interval)));
    if (listed >= 0) {
      return listed;
    }
    return classes.findIndex((values) =>
      values.masked.some(
        ({ mask, value: bits, except }) =>
          (value & BigInt(mask)) === BigInt(bits) && !except.some((word) => BigInt(word) === value),
      ),
    );
  }

  function sectionOf(map, connection) {
    return map.sections.find(
      (section) => section.direction === connection.direction && section.ipVersion === connection.ipVersion,
    );
  }

  /** The verdict of a connection. */
  function verdictOf(map, connection) {
    const section = sectionOf(map, connection);
    let target = section.root;
    while (target.node !== undefined) {
      const node = section.nodes[target.node];
      const field = section.fields[node.field];
      target = node.targets[classOf(field, connection[field.field])];
    }
    return map.verdicts[target.verdict];
  }

  // ---- The filters

  /** Whether a condition holds for a value: true, false, or undefined if only the engine can tell. */
  function holds(condition, field, value) {
    const bits = value === undefined || field === "application" ? 0n : value;
    const [first, last] = [BigInt(condition.first), BigInt(condition.last)];
    const judge = {
      "in-interval": () =>
        field === "application" || (field === "flags" && first !== last) ? undefined : first <= bits && bits <= last,
      "all-set": () => (field === "flags" ? (bits & first) === first : undefined),
      "any-set": () => (field === "flags" ? (bits & first) !== 0n : undefined),
      "none-set": () => (field === "flags" ? (bits & first) === 0n : undefined),
      is: () => (field === "application" ? value === condition.bytes : undefined),
      "ends-with": () => (field === "application" ? endsWith(value ?? "", condition.bytes) : undefined),
      unreadable: () => undefined,
    };
    if (condition.test === "unset") {
      return value === undefined;
    }
    const held = judge[condition.test]();
    if (held === undefined || value === undefined) {
      return held === undefined ? undefined : false;
    }
    return held !== condition.negated;
  }

  function anyOf(results) {
    return results.includes(true) || (results.includes(undefined) ? undefined : false);
  }

  /** Whether a filter matches: true, false or undefined. Conditions on one field are alternatives. */
  function matches(filter, connection) {
    const byField = new Map();
    for (const condition of filter.conditions) {
      byField.set(condition.field, [...(byField.get(condition.field) ?? []), condition]);
    }
    const results = [...byField].map(([name, conditions]) => {
      const direction = connection.direction === "outbound" ? 0n : 1n;
      if (name === "DIRECTION" && conditions.filter((c) => c.negated).length < 2) {
        return anyOf(conditions.map((c) => holds(c, name, direction)));
      }
      const field = fieldNames[name];
      return field === undefined ? undefined : anyOf(conditions.map((c) => holds(c, field, connection[field])));
    });
    if (results.includes(false)) {
      return false;
    }
    return results.includes(undefined) ? undefined : true;
  }

  const isDecider = (filter) => ["PERMIT", "BLOCK", "CALLOUT_TERMINATING", "CALLOUT_UNKNOWN"].includes(filter.action);

  /**
   * The sublayers that have filters in a layer, the heaviest first as in the snapshot, with these filters. The
   * heaviest filter is first; of filters with the same weight, the newest.
   */
  function ladderOf(snapshot, layer) {
    const heavier = (a, b) => (BigInt(a.weight) < BigInt(b.weight) ? 1 : BigInt(a.weight) > BigInt(b.weight) ? -1 : 0);
    return snapshot.sublayers
      .map((sublayer) => ({
        sublayer,
        filters: snapshot.filters
          .filter((f) => f.layer === layer && f.sublayer === sublayer.key && f.inForce && isDecider(f))
          .sort((a, b) => heavier(a, b) || b.id - a.id),
      }))
      .filter(({ filters }) => filters.length > 0);
  }

  /** Where connections are accepted, filters see IS_LOOPBACK with a companion. */
  function flagsAt(layer, flags) {
    const [loopback, companions, companion] = [0x1n, 0xc00000n, 0x800000n];
    const isBare = flags !== undefined && (flags & loopback) !== 0n && (flags & companions) === 0n;
    return isBare && layer.startsWith("ALE_AUTH_RECV_ACCEPT") ? flags | companion : flags;
  }

  /**
   * What each sublayer of a layer decides about a connection, by the first reading of every assumption.
   * The action is undefined if there are filters that only the engine can judge.
   */
  function traceLayer(snapshot, layer, connection) {
    const shown = { ...connection, flags: flagsAt(layer, connection.flags) };
    const rungs = ladderOf(snapshot, layer).map(({ sublayer, filters }) => {
      const results = filters.map((filter) => matches(filter, shown));
      const matching = filters.filter((filter, i) => results[i] === true && filter.action !== "CALLOUT_UNKNOWN");
      const unjudged = filters.filter((_, i) => results[i] === undefined);
      return { sublayer, filters, deciding: matching[0], outranked: matching.slice(1), unjudged, effect: "none" };
    });
    let hard;
    let block;
    for (const rung of rungs.filter(({ deciding }) => deciding !== undefined)) {
      const blocks = rung.deciding.action === "BLOCK";
      const settled = blocks ? (block === undefined ? hard : undefined) : block;
      rung.effect = settled === undefined ? "stands" : "ignored";
      rung.by = settled?.sublayer;
      if (blocks && settled === undefined && block === undefined) {
        block = rung;
        rungs
          .slice(0, rungs.indexOf(rung))
          .filter(({ effect }) => effect === "stands")
          .forEach((above) => Object.assign(above, { effect: "overridden", by: rung.sublayer }));
      } else if (!blocks && settled === undefined && rung.deciding.hard) {
        hard ??= rung;
      }
    }
    const isSure = rungs.every(({ unjudged }) => unjudged.length === 0);
    return { layer, rungs, action: isSure ? (block ? "block" : "permit") : undefined };
  }

  /** What each layer that a connection passes decides about it. */
  function trace(snapshot, connection) {
    return layersOf(connection.direction, connection.ipVersion).map((layer) => traceLayer(snapshot, layer, connection));
  }

  // ---- The matrix

  const axes = ["remote address", "interface", "application", "remote port"];

  /** Groups the classes of a field whose cells are all the same. */
  function groupClasses(indices, cellsOf) {
    const groups = new Map();
    for (const index of indices) {
      const look = cellsOf(index);
      groups.set(look, [...(groups.get(look) ?? []), index]);
    }
    return [...groups.values()];
  }

  const product = (lists) => lists.reduce((rows, list) => rows.flatMap((row) => list.map((x) => [...row, x])), [[]]);

  /**
   * The verdict of one cell. `chosen` has a class for some fields, undefined for the others; those have their
   * class in `plain`. Also gives the names of those other fields if another class may change the verdict.
   */
  function cellOf(section, chosen, plain) {
    const verdicts = new Set();
    const varying = new Set();
    const seen = new Set();
    const visit = (target, isPlain) => {
      const key = `${isPlain} ${target.node ?? "v" + target.verdict}`;
      if (seen.has(key)) {
        return undefined;
      }
      seen.add(key);
      if (target.node === undefined) {
        verdicts.add(target.verdict);
        return target.verdict;
      }
      const { field, targets } = section.nodes[target.node];
      if (chosen[field] !== undefined) {
        return visit(targets[chosen[field]], isPlain);
      }
      varying.add(section.fields[field].field);
      const found = visit(targets[plain[field]], isPlain);
      targets
        .filter((_, index) => index !== plain[field] && section.fields[field].classes[index].example !== null)
        .forEach((other) => visit(other, false));
      return found;
    };
    const verdict = visit(section.root, true);
    return { verdict, varying: verdicts.size > 1 ? [...varying] : [] };
  }

  /**
   * The verdicts of a section by destination, interface, application and remote port, one slice for each of
   * `flagWords`. All other fields have the values of the ordinary connection; a cell where other values would
   * make a difference says so. Values that the engine does not know are left out.
   */
  function matrixOf(section, ordinary, flagWords) {
    const indexOf = (name) => section.fields.findIndex(({ field }) => field === name);
    const plain = section.fields.map((field) => classOf(field, ordinary[field.field]));
    const onAxis = axes.map(indexOf);
    // The map leaves out a field that makes no difference. It has one class here, undefined.
    const classesOn = onAxis.map((field) =>
      field < 0
        ? [undefined]
        : [...section.fields[field].classes.keys()].filter((i) => section.fields[field].classes[i].example !== null),
    );

    const slices = flagWords.map((flags) => {
      const cells = new Map();
      for (const indices of product(classesOn)) {
        const chosen = Array(section.fields.length);
        onAxis.forEach((field, axis) => field >= 0 && (chosen[field] = indices[axis]));
        if (indexOf("flags") >= 0) {
          chosen[indexOf("flags")] = classOf(section.fields[indexOf("flags")], flags);
        }
        cells.set(indices.join(), cellOf(section, chosen, plain));
      }
      return { flags, cells };
    });
    const looksOf = (some, axis, index) =>
      product([some, ...classesOn.map((classes, i) => (i === axis ? [index] : classes))])
        .map(([{ cells }, ...indices]) => cells.get(indices.join()))
        .map(({ verdict, varying }) => `${verdict}:${varying.join("+")}`)
        .join(" ");
    const groupsOn = (some, axis) => {
      const groups = groupClasses(classesOn[axis], (index) => looksOf(some, axis, index));
      const field = section.fields[onAxis[axis]];
      return groups
        .map((indices) => {
          const isOther = field === undefined || indices.includes(plain[onAxis[axis]]);
          const text = indices.map((index) => field?.classes[index].text).join(", ");
          const example = isOther ? undefined : field.classes[indices[0]].example;
          return { indices, isOther, example, text: isOther ? (groups.length === 1 ? "any" : "any other") : text };
        })
        .sort((a, b) => a.isOther - b.isOther || (field?.field === "application" ? a.text.localeCompare(b.text) : 0));
    };
    const [interfaces, applications, ports] = [1, 2, 3].map((axis) => groupsOn(slices, axis));
    return {
      interfaces,
      applications,
      ports,
      slices: slices.map((slice) => ({
        flags: slice.flags,
        rows: groupsOn([slice], 0),
        cellAt: (...groups) => slice.cells.get(groups.map(({ indices }) => indices[0]).join()),
      })),
    };
  }

  return { parseAddress, formatAddress, classOf, sectionOf, verdictOf, trace, ladderOf, layersOf, matrixOf };
})();
