// The elements of an engine's dump, as netsh wfp show state writes them.

const escaped = (text) => text.replaceAll("&", "&amp;").replaceAll("<", "&lt;");
const named = (name) => `<displayData><name>${escaped(name)}</name><description/></displayData>`;
const leaf = (name, text) => (text === "" ? `<${name}/>` : `<${name}>${text}</${name}>`);
const list = (name, items) => `<${name} numItems="${items.length}">\n${items.join("")}</${name}>\n`;
const flagList = (flags) =>
  list(
    "flags",
    flags.map((flag) => `<item>${flag}</item>\n`),
  );

const value = (type, text) => `<type>FWP_${type.toUpperCase()}</type><${type}>${text}</${type}>`;
const addressType = { 4: (text) => value("uint32", text), 6: (text) => byteArray("byteArray16", text) };
const byteArray = (name, text) => `<type>FWP_BYTE_ARRAY16_TYPE</type><${name}>${text}</${name}>`;
const rangeOf = (low, high) =>
  `<type>FWP_RANGE_TYPE</type><rangeValue><valueLow>${low}</valueLow><valueHigh>${high}</valueHigh></rangeValue>`;
const utf16 = (text) => Buffer.from(text + "\0", "utf16le").toString("hex");
const blob = (text) => `<type>FWP_BYTE_BLOB_TYPE</type><byteBlob><data>${utf16(text)}</data></byteBlob>`;
const descriptor = (sddl) => `<type>FWP_SECURITY_DESCRIPTOR_TYPE</type><sd>${sddl}</sd>`;

const condition = (field, match, content) =>
  `<item><fieldKey>FWPM_CONDITION_${field}</fieldKey><matchType>FWP_MATCH_${match}</matchType>` +
  `<conditionValue>${content}</conditionValue></item>\n`;

/** A condition, or several on one field that are alternatives. */
export const on = {
  application: (path) => condition("ALE_APP_ID", "EQUAL", blob(path)),
  service: (sid) => condition("ALE_USER_ID", "EQUAL", descriptor(`O:SYG:SYD:(A;;CCRC;;;${sid})`)),
  protocol: (number) => condition("IP_PROTOCOL", "EQUAL", value("uint8", number)),
  port: (side, number) => condition(`IP_${side}_PORT`, "EQUAL", value("uint16", number)),
  ports: (side, first, last) =>
    condition(`IP_${side}_PORT`, "RANGE", rangeOf(value("uint16", first), value("uint16", last))),
  remote: (version, first, last) =>
    condition("IP_REMOTE_ADDRESS", "RANGE", rangeOf(addressType[version](first), addressType[version](last))),
  profile: (number) =>
    condition("ORIGINAL_PROFILE_ID", "EQUAL", value("uint32", number)) +
    condition("CURRENT_PROFILE_ID", "EQUAL", value("uint32", number)),
  allFlags: (word) => condition("FLAGS", "FLAGS_ALL_SET", value("uint32", word)),
  noFlags: (word) => condition("FLAGS", "FLAGS_NONE_SET", value("uint32", word)),
};

export function filter({ id, key, name, provider, layer, sublayer, weight, action, callout, flags, conditions }) {
  const items = conditions.join("").match(/<item>.*<\/item>\n/g) ?? [];
  return (
    `<item><filterKey>${key}</filterKey>${named(name)}${flagList(flags)}${leaf("providerKey", provider)}` +
    `<providerData/><layerKey>FWPM_LAYER_${layer}</layerKey><subLayerKey>${sublayer}</subLayerKey>` +
    `<weight>${value("uint64", weight)}</weight>${list("filterCondition", items)}` +
    `<action><type>FWP_ACTION_${action}</type>${leaf("filterType", callout)}</action><rawContext>0</rawContext>` +
    `<reserved/><filterId>${id}</filterId><effectiveWeight>${value("uint64", weight)}</effectiveWeight></item>\n`
  );
}

function layer({ name, callouts, filters }, index) {
  const calloutItems = callouts.map(
    ({ key, name: calloutName, provider, id }) =>
      `<item><calloutKey>${key}</calloutKey>${named(calloutName)}${flagList(["FWPM_CALLOUT_FLAG_REGISTERED"])}` +
      `<providerKey>${provider}</providerKey><providerData/><applicableLayer>FWPM_LAYER_${name}</applicableLayer>` +
      `<calloutId>${id}</calloutId></item>\n`,
  );
  return (
    `<item><layer><layerKey>FWPM_LAYER_${name}</layerKey>${named(name)}<flags/><field/>` +
    `<defaultSubLayerKey>FWPM_SUBLAYER_UNIVERSAL</defaultSubLayerKey><layerId>${index}</layerId></layer>\n` +
    `${list("callouts", calloutItems)}${list("filters", filters)}</item>\n`
  );
}

const provider = ({ key, name, service }) =>
  `<item><providerKey>${key}</providerKey>${named(name)}<flags/><providerData/>${leaf("serviceName", service)}</item>\n`;

const sublayer = ({ key, name, provider: owner, weight }) =>
  `<item><subLayerKey>${key}</subLayerKey>${named(name)}<flags/>${leaf("providerKey", owner)}<providerData/>` +
  `<weight>${weight}</weight></item>\n`;

/** A whole dump. The filters are the texts that filter() gives. */
export function dump({ layers, providers, sublayers }) {
  return (
    '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n<wfpstate>\n' +
    "<timeStamp>2026-11-02T08:00:00.000Z</timeStamp>\n<sessions/>\n" +
    list("layers", layers.map(layer)) +
    list("providers", providers.map(provider)) +
    "<providerContexts/>\n" +
    list("subLayers", sublayers.map(sublayer)) +
    "</wfpstate>\n"
  );
}
