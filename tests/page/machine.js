// Writes the dump of a machine such as support engineers meet: 1,200 filters of ten providers in thirty sublayers.
//   node machine.js FILE.xml
import { writeFileSync } from "node:fs";
import { dump, filter, on } from "./dump.js";

let seed = 20;
/** A number below the limit; the same row of numbers in each run. */
function below(limit) {
  seed = (seed * 48271) % 2147483647;
  return seed % limit;
}
const pick = (values) => values[below(values.length)];
const digits = (count) => Array.from({ length: count }, () => below(16).toString(16)).join("");
const key = () => `{${[8, 4, 4, 4, 12].map(digits).join("-")}}`;
const upTo = (count) => [...Array(count).keys()];

// ---- Who owns filters, and where they stand

const builtIn = (name, service) => ({ key: `FWPM_PROVIDER_${name}`, name, service });
const firewall = { ...builtIn("MPSSVC_WF", "MpsSvc"), name: "Windows Firewall" };
const hardening = { ...builtIn("MPSSVC_WSH", "MpsSvc"), name: "Windows service hardening" };
const isolation = { ...builtIn("MPSSVC_APP_ISOLATION", "MpsSvc"), name: "Windows isolation of applications" };
const nimbus = { key: key(), name: "Nimbus Endpoint Security", service: "NimbusGuard" };
const harbour = { key: key(), name: "Harbour Remote Access", service: "HarbourAgent" };
const providers = [
  firewall,
  hardening,
  isolation,
  builtIn("MPSSVC_EDP", "MpsSvc"),
  builtIn("MPSSVC_TENANT_RESTRICTIONS", "MpsSvc"),
  builtIn("IKEEXT", "IKEEXT"),
  builtIn("IPSEC_DOSP_CONFIG", ""),
  builtIn("TCP_CHIMNEY_OFFLOAD", ""),
  nimbus,
  harbour,
];

const sublayer = (name, weight, provider = { key: "" }, itsKey = `FWPM_SUBLAYER_${name}`) => ({
  key: itsKey,
  name,
  provider: provider.key,
  weight,
});
const rules = sublayer("MPSSVC_WF", 2, firewall);
const services = sublayer("MPSSVC_WSH", 3, hardening);
const isolated = sublayer("MPSSVC_APP_ISOLATION", 7, isolation);
const web = sublayer("Nimbus web shield", 32771, nimbus, key());
const devices = sublayer("Nimbus control of devices and applications", 32770, nimbus, key());
const tunnel = sublayer("Harbour tunnel", 65535, harbour, key());
const sublayers = [
  sublayer("INSPECTION", 0),
  sublayer("TEREDO", 1),
  rules,
  services,
  sublayer("MPSSVC_QUARANTINE", 4, hardening),
  sublayer("MPSSVC_EDP", 5),
  sublayer("MPSSVC_TENANT_RESTRICTIONS", 6),
  isolated,
  sublayer("TCP_CHIMNEY_OFFLOAD", 8192),
  sublayer("TCP_TEMPLATES", 8704),
  sublayer("IPSEC_SECURITY_REALM", 12288),
  sublayer("SECURE_SOCKET", 16384),
  sublayer("LIPS", 32767),
  sublayer("UNIVERSAL", 32768),
  sublayer("IPSEC_DOSP", 34816),
  sublayer("IPSEC_FORWARD_OUTBOUND_TUNNEL", 36864),
  sublayer("IPSEC_TUNNEL", 40960),
  sublayer("RPC_AUDIT", 49152),
  web,
  devices,
  tunnel,
  ...upTo(9).map((i) => sublayer(`Nimbus inspection ${i + 1}`, 32780 + i, nimbus, key())),
];

// ---- Filters, by layer

const layers = new Map();
const layerOf = (name) => {
  if (!layers.has(name)) {
    layers.set(name, { name, callouts: [], filters: [] });
  }
  return layers.get(name);
};
let count = 0;

function add(layer, owner, where, name, conditions, { action = "PERMIT", callout = "", weight, hard = false } = {}) {
  layerOf(layer).filters.push(
    filter({
      id: 70000 + ++count,
      key: key(),
      name,
      provider: owner.key,
      layer,
      sublayer: where.key,
      weight: weight ?? (BigInt(4 + conditions.length) << 60n) + BigInt(5000 - count),
      action,
      callout,
      flags: hard ? ["FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT"] : [],
      conditions,
    }),
  );
}

function addCallout(layer, owner, where, name, conditions) {
  const callout = { key: key(), name: `${name} ${layer}`, provider: owner.key, id: 300 + count };
  layerOf(layer).callouts.push(callout);
  add(layer, owner, where, name, conditions, { action: "CALLOUT_TERMINATING", callout: callout.key });
}

const block = { action: "BLOCK" };
const lowest = { action: "BLOCK", weight: 1024n };
const versions = [4, 6];
const volume = "\\device\\harddiskvolume3\\";
const program = (i) => `${volume}program files\\vendor ${1 + (i % 9)}\\product-${i}\\bin\\product-${i}-service.exe`;
const sid = () =>
  `S-1-5-80-${upTo(5)
    .map(() => 1000000000 + below(2000000000))
    .join("-")}`;
const packaged = (i) =>
  `@{Vendor.Product${i}_2026.${100 + i}.3.0_x64__${digits(13)}?ms-resource://Vendor.Product${i}/Resources/StoreName}`;
const network = (version, i) =>
  version === 4
    ? [`203.${i}.${below(200)}.0`, `203.${i}.${200 + below(55)}.255`]
    : [`2001:db8:${i}::`, `2001:db8:${i}:ffff:ffff:ffff:ffff:ffff`];
const profiles = [1, 2, 4];

/** Rules of the firewall: by application, protocol, port, addresses, profile and service. */
function addRules() {
  for (const i of upTo(110)) {
    const conditions = (version) => [
      ...(i % 5 === 4 ? [] : [on.application(program(i % 70))]),
      ...(i % 4 === 1 ? [on.service(sid())] : []),
      on.protocol(i % 3 === 0 ? 17 : 6),
      i % 6 === 0 ? on.ports("LOCAL", 5000 + 10 * i, 5009 + 10 * i) : on.port("LOCAL", 1024 + i),
      ...(i % 7 === 2
        ? [on.remote(version, ...network(version, i)), on.remote(version, ...network(version, i + 1))]
        : []),
      ...(i % 3 === 1 ? [on.profile(pick(profiles))] : []),
    ];
    const name = i % 10 === 3 ? packaged(i) : `Rule ${i + 1} of product ${i % 70} (${i % 3 === 0 ? "UDP" : "TCP"}-In)`;
    for (const version of versions) {
      add(`ALE_AUTH_RECV_ACCEPT_V${version}`, firewall, rules, name, conditions(version), i % 9 === 8 ? block : {});
    }
    if (i < 60) {
      versions.forEach((version) =>
        add(`ALE_AUTH_LISTEN_V${version}`, firewall, rules, name, [on.application(program(i % 70))]),
      );
    }
  }
  for (const i of upTo(70)) {
    for (const version of versions) {
      const conditions = [
        on.application(program(i)),
        on.protocol(i % 4 === 0 ? 17 : 6),
        ...(i % 2 === 0 ? [on.port("REMOTE", 2000 + i)] : []),
        ...(i % 5 === 0 ? [on.remote(version, ...network(version, i))] : []),
        ...(i % 3 === 1 ? [on.profile(pick(profiles))] : []),
      ];
      add(
        `ALE_AUTH_CONNECT_V${version}`,
        firewall,
        rules,
        `Rule ${i + 1} of product ${i} (Out)`,
        conditions,
        i % 6 === 0 ? block : {},
      );
    }
  }
  for (const version of versions) {
    add(`ALE_AUTH_RECV_ACCEPT_V${version}`, firewall, rules, "Default inbound", [on.noFlags(1)], lowest);
  }
}

/** What services may do, and nothing else of theirs. */
function addServices() {
  const host = on.application(`${volume}windows\\system32\\svchost.exe`);
  for (const i of upTo(58)) {
    const who = [host, on.service(sid())];
    for (const version of versions) {
      add(`ALE_AUTH_CONNECT_V${version}`, hardening, services, `Service ${i + 1} goes out`, [
        ...who,
        on.port("REMOTE", 80 + i),
      ]);
      add(`ALE_AUTH_RECV_ACCEPT_V${version}`, hardening, services, `Service ${i + 1} serves`, [
        ...who,
        on.port("LOCAL", 400 + i),
      ]);
    }
  }
  for (const version of versions) {
    const everyService = `${upTo(20).map(sid).join(")(A;;CCRC;;;")}`;
    add(
      `ALE_AUTH_CONNECT_V${version}`,
      hardening,
      services,
      "Services have no other way out",
      [host, on.service(everyService)],
      lowest,
    );
    add(
      `ALE_AUTH_RECV_ACCEPT_V${version}`,
      hardening,
      services,
      "Services serve nothing else",
      [host, on.service(everyService)],
      lowest,
    );
  }
  for (const i of upTo(20)) {
    versions.forEach((version) =>
      add(
        `ALE_RESOURCE_ASSIGNMENT_V${version}`,
        isolation,
        isolated,
        packaged(200 + i),
        [on.application(program(i))],
        block,
      ),
    );
  }
}

/** A security suite: blocks by application, port and address, and callouts that look into packets. */
function addSuite() {
  for (const i of upTo(40)) {
    for (const version of versions) {
      const name = `Nimbus policy ${i + 1}: keeps the networks of list ${digits(8)} from being reached`;
      add(`ALE_AUTH_CONNECT_V${version}`, nimbus, web, name, [on.remote(version, ...network(version, 100 + i))], block);
      add(
        `ALE_AUTH_CONNECT_V${version}`,
        nimbus,
        devices,
        `Nimbus: product ${i + 20} stays off`,
        [on.application(program(i + 20)), on.port("REMOTE", 8000 + i)],
        block,
      );
      add(
        `ALE_AUTH_RECV_ACCEPT_V${version}`,
        nimbus,
        devices,
        `Nimbus: nobody calls port ${8000 + i}`,
        [on.protocol(6), on.port("LOCAL", 8000 + i)],
        block,
      );
    }
  }
  const packets = ["INBOUND_TRANSPORT", "OUTBOUND_TRANSPORT", "INBOUND_IPPACKET", "OUTBOUND_IPPACKET"];
  upTo(9).forEach((i) =>
    packets.forEach((name) =>
      versions.forEach((version) =>
        addCallout(`${name}_V${version}`, nimbus, sublayers.at(i - 9), `Nimbus look ${i + 1}`, []),
      ),
    ),
  );
}

/** Another VPN, whose hard permits of its own program nobody below can take back. */
function addTunnel() {
  const agent = `${volume}program files\\harbour\\harbour-agent.exe`;
  for (const version of versions) {
    const address = version === 4 ? "192.0.2.77" : "2001:db8:77::1";
    add(
      `ALE_AUTH_CONNECT_V${version}`,
      harbour,
      tunnel,
      "Harbour reaches its server",
      [on.application(agent), on.remote(version, address, address), on.protocol(17), on.port("REMOTE", 51820)],
      { hard: true },
    );
    add(`ALE_AUTH_CONNECT_V${version}`, harbour, tunnel, "Harbour on this machine", [
      on.application(agent),
      on.allFlags(1),
    ]);
  }
}

addRules();
addServices();
addSuite();
addTunnel();
const kinds = ["OUTBOUND_ICMP_ERROR_V4", "INBOUND_ICMP_ERROR_V4", "OUTBOUND_ICMP_ERROR_V6", "INBOUND_ICMP_ERROR_V6"];
while (count < 1200) {
  add(kinds[count % kinds.length], firewall, rules, `ICMP error ${count}`, []);
}
writeFileSync(process.argv[2], dump({ layers: [...layers.values()], providers, sublayers }));
