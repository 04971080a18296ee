// What the tables of the map show: the verdicts of a section by address, interface, application and port.
const tables = (() => {
  /** A table with more columns is for one application alone; if it still has more, for one interface as well. */
  const mostColumns = 60;
  const narrowings = [[], ["application"], ["application", "interface"]];

  const axesOf = (section) => [
    "remote address",
    "interface",
    "application",
    section.direction === "inbound" ? "local port" : "remote port",
  ];

  /** The classes of an axis that are shown: not the one that the engine has no value for. */
  const shownClasses = ({ classes }) => [...classes.keys()].filter((index) => classes[index].example !== null);

  /** The one group of an axis that is as asked about. */
  function askedGroup(field, index, value, ordinaryValue) {
    const isOther = value === ordinaryValue;
    return [
      {
        indices: [index],
        isOther,
        example: isOther ? undefined : value,
        text: isOther ? "any other" : field.classes[index].text,
      },
    ];
  }

  function groupOf(field, indices, plain, isOnly) {
    const isOther = field === undefined || indices.includes(plain);
    const text = indices.map((index) => field?.classes[index].text).join(", ");
    const example = isOther ? undefined : field.classes[indices[0]].example;
    return { indices, isOther, example, text: isOther ? (isOnly ? "any" : "any other") : text };
  }

  const inOrder = (name) => (a, b) =>
    a.isOther - b.isOther || (name === "application" ? a.text.localeCompare(b.text) : 0);

  /** The diagrams of a section's axes, one for each word of flags, and the classes that they show. */
  function restrictTo(section, axes, plain, flagWords) {
    const store = diagram.makeStore();
    const fixed = axes.filter(({ fixedClass }) => fixedClass !== undefined);
    const free = axes.filter(({ field, fixedClass }) => field !== undefined && fixedClass === undefined);
    const shown = new Map(free.map(({ index, field }) => [index, shownClasses(field)]));
    const flagsAt = section.fields.findIndex(({ field }) => field === "flags");
    const roots = flagWords.map((flags) => {
      const chosen = new Map(fixed.map(({ index, fixedClass }) => [index, fixedClass]));
      if (flagsAt >= 0) {
        chosen.set(flagsAt, policy.classOf(section.fields[flagsAt], flags));
      }
      return diagram.restrict(section, { store, plain, chosen, shown });
    });
    return { roots, shown };
  }

  /** The table for the axes named in `narrowed` being as they are in `asked`. */
  function tableOf(section, ordinary, flagWords, asked, narrowed) {
    const plain = section.fields.map((field) => policy.classOf(field, ordinary[field.field]));
    const axes = axesOf(section).map((name) => {
      const index = section.fields.findIndex(({ field }) => field === name);
      const field = section.fields[index];
      const isFixed = field !== undefined && narrowed.includes(name);
      return { name, index, field, fixedClass: isFixed ? policy.classOf(field, asked[name]) : undefined };
    });
    const { roots, shown } = restrictTo(section, axes, plain, flagWords);

    /** The groups of an axis over some roots. The map leaves out a field that makes no difference: one group. */
    function groupsOn(some, { name, index, field, fixedClass }) {
      if (fixedClass !== undefined) {
        return askedGroup(field, fixedClass, asked[name], ordinary[name]);
      }
      const parts = field === undefined ? [[undefined]] : diagram.groupClasses(some, index, shown.get(index));
      return parts.map((indices) => groupOf(field, indices, plain[index], parts.length === 1)).sort(inOrder(name));
    }
    const cellAt = (root, groups) => {
      const classes = new Map(axes.map(({ index }, axis) => [index, groups[axis].indices[0]]));
      const { verdict, varying } = diagram.leafAt(root, classes);
      return { verdict, varying };
    };
    const [interfaces, applications, ports] = axes.slice(1).map((axis) => groupsOn(roots, axis));
    return {
      portName: axes[3].name,
      narrowed: axes.filter(({ fixedClass }) => fixedClass !== undefined).map(({ name }) => name),
      interfaces,
      applications,
      ports,
      slices: roots.map((root, i) => ({
        flags: flagWords[i],
        rows: groupsOn([root], axes[0]),
        cellAt: (...groups) => cellAt(root, groups),
      })),
    };
  }

  /**
   * The verdicts of a section by destination, interface, application and port, one slice for each of `flagWords`.
   * All other fields have the values of the ordinary connection; a cell where other values would make a difference
   * says so. Values that the engine does not know are left out. If that makes too many columns, application and
   * interface are as `asked` about.
   */
  function of(section, ordinary, flagWords, asked = ordinary) {
    for (const narrowed of narrowings) {
      const table = tableOf(section, ordinary, flagWords, asked, narrowed);
      const columns = table.interfaces.length * table.applications.length * table.ports.length;
      if (columns <= mostColumns || narrowed === narrowings.at(-1)) {
        return table;
      }
    }
    return undefined;
  }

  return { of };
})();
