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
      // Decided for all connections by whom and where the page is for.
      if (conditions[0].holds !== undefined) {
        return conditions[0].holds;
      }
      const { asksOf } = conditions[0];
      if (asksOf !== undefined) {
        return anyOf(conditions.flatMap(({ tests }) => tests.map((test) => holds(test, asksOf, connection[asksOf]))));
      }
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

  /** Callouts are taken to let pass: one that may leave the decision to the next filter does so. */
  const isDecider = ({ action, passive }) => !passive && ["PERMIT", "BLOCK", "CALLOUT_TERMINATING"].includes(action);

  const strengths = { block: 0, pass: 1, hard: 2 };
  /** What a filter decides if it matches; none, like a soft permit, changes nothing of what follows. */
  function strengthOf(filter) {
    if (filter?.action === "BLOCK") {
      return strengths.block;
    }
    return filter?.hard ? strengths.hard : strengths.pass;
  }

  function makeLadder(snapshot, layer) {
    const heavier = (a, b) => (BigInt(a.weight) < BigInt(b.weight) ? 1 : BigInt(a.weight) > BigInt(b.weight) ? -1 : 0);
    const inTurn = snapshot.filters
      .filter((filter) => filter.layer === layer && filter.inForce && isDecider(filter))
      .sort((a, b) => heavier(a, b) || b.id - a.id);
    return snapshot.sublayers
      .map((sublayer) => ({ sublayer, filters: inTurn.filter((filter) => filter.sublayer === sublayer.key) }))
      .filter(({ filters }) => filters.length > 0);
  }

  const ladders = new WeakMap();
  /**
   * The sublayers that have filters in a layer, the heaviest first as in the snapshot, with these filters. The
   * heaviest filter is first; of filters with the same weight, the newest.
   */
  function ladderOf(snapshot, layer) {
    const known = ladders.get(snapshot) ?? new Map();
    ladders.set(snapshot, known);
    if (!known.has(layer)) {
      known.set(layer, makeLadder(snapshot, layer));
    }
    return known.get(layer);
  }

  /** The action of a layer, undefined if it is for unjudged filters to say. */
  function actionOf(rungs) {
    // What the heavier sublayers have decided: a block, a hard permit, or neither.
    let states = new Set(["open"]);
    for (const { deciding, unjudged } of rungs) {
      const outcomes = [strengthOf(deciding), ...unjudged.map(strengthOf)];
      const next = (state, outcome) => {
        const isSettled = state !== "open" || outcome === strengths.pass;
        return isSettled ? state : outcome === strengths.block ? "block" : "hard";
      };
      states = new Set([...states].flatMap((state) => outcomes.map((outcome) => next(state, outcome))));
    }
    const actions = new Set([...states].map((state) => (state === "block" ? "block" : "permit")));
    return actions.size === 1 ? [...actions][0] : undefined;
  }

  /** Where connections are accepted, filters see IS_LOOPBACK with a companion. */
  function flagsAt(layer, flags) {
    const [loopback, companions, companion] = [0x1n, 0xc00000n, 0x800000n];
    const isBare = flags !== undefined && (flags & loopback) !== 0n && (flags & companions) === 0n;
    return isBare && layer.startsWith("ALE_AUTH_RECV_ACCEPT") ? flags | companion : flags;
  }

  /**
   * What each sublayer of a layer decides about a connection, by the first reading of every assumption.
   * The action is undefined if filters that only the engine can judge may change it.
   */
  function traceLayer(snapshot, layer, connection) {
    const shown = { ...connection, flags: flagsAt(layer, connection.flags) };
    const rungs = ladderOf(snapshot, layer).map(({ sublayer, filters }) => {
      const results = filters.map((filter) => matches(filter, shown));
      const matching = filters.filter((_, i) => results[i] === true);
      const inTurn = results.includes(true) ? results.indexOf(true) : results.length;
      const unjudged = filters.slice(0, inTurn).filter((_, i) => results[i] === undefined);
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
    return { layer, rungs, action: actionOf(rungs) };
  }

  /** What each layer that a connection passes decides about it. */
  function trace(snapshot, connection) {
    return layersOf(connection.direction, connection.ipVersion).map((layer) => traceLayer(snapshot, layer, connection));
  }

  return { parseAddress, formatAddress, classOf, sectionOf, verdictOf, trace, ladderOf, matches };
})();
