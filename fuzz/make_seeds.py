#!/usr/bin/env python3
"""Writes the seeds in corpus/: cases that reach deep, for the fuzzers to start from.

The layout of a case is that of the target's own source, bytes from front to back; choices from a table are one
byte, its index. Run it again when a table's order changes.
"""
import re
import shutil
from pathlib import Path

HERE = Path(__file__).parent


def names_in(header, pattern):
    return re.findall(pattern, (HERE.parent / header).read_text(), re.MULTILINE)


FIELDS = names_in("catalog/Fields.h", r'^    \{"(\w+)", (?:"[0-9a-f-]{36}"_guid|k\w+)')
LAYERS = names_in("catalog/Layers.cpp", r'^    \{\d+, "(\w+)"')


def number(value, size):
    return value.to_bytes(size, "little")


def text(characters):
    return bytes([len(characters)]) + characters.encode()


def wide(characters):
    return bytes([len(characters)]) + characters.encode("utf-16-le")


# registry_property: type, data
REGISTRY = {
    "nothing": b"\x00",
    "string": b"\x01" + "Tunnel\0".encode("utf-32-le"),
    "expandable": b"\x02" + "%a%\0tail".encode("utf-16-le"),
    "binary": b"\x03\x01\x02\x03",
    "number": b"\x04\x78\x56\x34\x12",
    "short_number": b"\x04\x78\x56",
    "big_endian": b"\x05\x12\x34\x56\x78",
    "list": b"\x07" + "one\0two\0\0".encode("utf-32-le"),
    "long_number": b"\x0b" + number(0x0123456789ABCDEF, 8),
    "unknown": b"\x63\x01",
}


# address_texts: address, mask, prefix length, number, bytes
def addresses(address, mask="", prefix=0, as_number=0, as_bytes=b""):
    return text(address) + text(mask) + number(prefix, 1) + number(as_number, 4) + as_bytes


ADDRESSES = {
    "ipv4": addresses("192.168.0.0", "255.255.0.0", 16, 0x7F000001),
    "broadcast": addresses("255.255.255.255", "0.0.0.0", 0, 0xFFFFFFFF),
    "ipv6": addresses("fe80::1", "", 64, 0, bytes(range(16))),
    "mapped": addresses("::ffff:10.0.0.1", "", 128, 0, bytes(10) + b"\xff\xff\x0a\x00\x00\x01"),
    "malformed": addresses("1.2.3", "1.2.3.4.5", 255),
    "empty": addresses(""),
}


# filter_from_native: action, layer, flags, weight's type and value, conditions
def native(layer, *conditions, action=0, flags=0, weight=(1, 15)):
    return bytes([action, LAYERS.index(layer), flags, *weight]) + b"".join(conditions)


def condition(field, data_type, data, match=0):
    return bytes([FIELDS.index(field), match]) + number(data_type, 2) + b"\x01" + data.ljust(32, b"\0")


FILTERS = {
    "block": native("ALE_AUTH_CONNECT_V4"),
    "override": native("ALE_AUTH_CONNECT_V6", action=1, flags=8, weight=(0, 0)),
    "forward_v6": native("IPFORWARD_V6"),
    "app": native("ALE_AUTH_CONNECT_V4", condition("ALE_APP_ID", 12, number(4, 8))),
    "interface": native("ALE_AUTH_CONNECT_V4", condition("IP_LOCAL_INTERFACE", 4, number(6 << 48, 8), match=10)),
    "dhcp": native("ALE_AUTH_CONNECT_V4", condition("IP_PROTOCOL", 1, b""), condition("IP_LOCAL_PORT", 2, b""),
                   condition("IP_REMOTE_PORT", 2, b"", match=1)),
    "networks": native("ALE_AUTH_CONNECT_V4", condition("IP_REMOTE_ADDRESS", 256, bytes(8)),
                       condition("IP_REMOTE_ADDRESS", 257, bytes(17)), condition("IP_LOCAL_ADDRESS", 3, b"")),
    "indexes": native("INBOUND_IPPACKET_V4", condition("INTERFACE_INDEX", 3, b""),
                      condition("SUB_INTERFACE_INDEX", 3, b""), condition("FLAGS", 3, b"")),
    "range": native("ALE_AUTH_CONNECT_V4", condition("IP_REMOTE_PORT", 258, bytes(32), match=5)),
    "unknown_field": native("ALE_AUTH_CONNECT_V4", condition("ALE_USER_ID", 14, number(4, 8))),
}

# command_sequence: the provider's name, then commands, each preceded by a planned failure or by none
def choices(indexes):
    return number(len(indexes), 1) + indexes


def disable_internet(apps=b"", interfaces=None, machine=b"\0\0\0"):
    return b"\0" + machine + choices(apps) + choices(interfaces or b"") + number(interfaces is not None, 1)


ENABLE_INTERNET, ENABLE_DHCP, DISABLE_DHCP = b"\x01", b"\x02", b"\x03"
INITIALIZE = b"\x06" + wide("again") + b"\0"
DISABLE_LEAK_PROTECTION = b"\x05"
DISABLE_LOCAL_NETWORK, ENABLE_LOCAL_NETWORK, DISABLE_SKEIN = b"\x07", b"\x08", b"\x0a"
ENUMERATE = 5
OPEN, ADD_PROVIDER, ADD_SUBLAYER, ADD_FILTER, DELETE_SUBLAYER, BEGIN, COMMIT, APP_ID = range(7, 15)


def only(luid):
    return b"\x01" + number(luid, 8) if luid else b"\0"


def addresses_of(values):
    return number(len(values), 1) + b"".join(number(value, 4) for value in values)


def enable_leak_protection(luid=7, names=b"", permitted=(), machine=b"\0\0\0"):
    return b"\x04" + machine + choices(names) + text("198.51.100.7") + only(luid) + addresses_of(permitted)


def enable_skein(luid=0, peers=(), names=b"", machine=b"\0\0\0"):
    return b"\x09" + machine + choices(names) + only(luid) + addresses_of(peers)


def calm(command):
    return b"\0" + command


def failing(call, command, nth=1):
    return bytes([1, call, nth - 1, 0]) + command


COMMANDS = {
    "kill_switch": [calm(disable_internet()), calm(ENABLE_INTERNET)],
    "apps": [calm(disable_internet(apps=b"\0\1")), calm(disable_internet(apps=b"\1")), calm(ENABLE_INTERNET)],
    "missing_app": [calm(disable_internet()), calm(disable_internet(apps=b"\2")), calm(disable_internet())],
    "interfaces": [calm(disable_internet(interfaces=b"\0\3", machine=b"\1\1\0")), calm(disable_internet())],
    "no_adapters": [calm(disable_internet(interfaces=b"\1", machine=b"\0\0\1\6\0\3"))],
    "dhcp": [calm(ENABLE_DHCP), calm(ENABLE_DHCP), calm(DISABLE_DHCP), calm(DISABLE_DHCP)],
    "both": [calm(ENABLE_DHCP), calm(disable_internet()), calm(INITIALIZE), calm(ENABLE_DHCP)],
    "open": [failing(OPEN, ENABLE_DHCP), calm(disable_internet())],
    "provider": [failing(ADD_PROVIDER, disable_internet()), calm(ENABLE_INTERNET)],
    "sublayer": [failing(ADD_SUBLAYER, ENABLE_DHCP), calm(DISABLE_DHCP)],
    "filter": [failing(ADD_FILTER, disable_internet(), nth=17), calm(ENABLE_INTERNET)],
    "remove": [calm(ENABLE_DHCP), failing(DELETE_SUBLAYER, DISABLE_DHCP), calm(DISABLE_DHCP)],
    "begin": [calm(disable_internet()), failing(BEGIN, disable_internet())],
    "commit": [calm(disable_internet()), failing(COMMIT, disable_internet()), calm(disable_internet())],
    "leak": [calm(enable_leak_protection()), calm(enable_leak_protection(permitted=(1, 0xFFFFFFFF))),
             calm(DISABLE_LEAK_PROTECTION), calm(enable_leak_protection(luid=1 << 63))],
    "leak_names": [calm(enable_leak_protection(0, b"\0", machine=b"\1\1\0")), calm(enable_leak_protection(0))],
    "leak_no_adapters": [calm(enable_leak_protection(0, b"\1", machine=b"\0\0\1\6\0\3"))],
    "leak_without_dns": [failing(APP_ID, enable_leak_protection()), calm(enable_leak_protection()),
                         calm(enable_leak_protection())],
    "leak_without_copy": [failing(OPEN, enable_leak_protection()), calm(DISABLE_LEAK_PROTECTION)],
    "leak_empty_copy": [failing(ENUMERATE, enable_leak_protection()), calm(enable_leak_protection())],
    "leak_torso": [failing(ADD_FILTER, enable_leak_protection(), nth=14), calm(enable_leak_protection()),
                   failing(ADD_SUBLAYER, enable_leak_protection()), calm(enable_leak_protection())],
    "leak_left": [calm(enable_leak_protection()), failing(DELETE_SUBLAYER, DISABLE_LEAK_PROTECTION, nth=2),
                  calm(enable_leak_protection()), calm(DISABLE_LEAK_PROTECTION)],
    "local_network": [calm(DISABLE_LOCAL_NETWORK), calm(DISABLE_LOCAL_NETWORK), calm(ENABLE_LOCAL_NETWORK)],
    "local_network_filter": [failing(ADD_FILTER, DISABLE_LOCAL_NETWORK, nth=7), calm(ENABLE_LOCAL_NETWORK)],
    "skein": [calm(enable_skein(7, (0x64400009, 0xcb007105))), calm(enable_skein(8)), calm(DISABLE_SKEIN)],
    "skein_interfaces": [calm(enable_skein(0, (1, 2, 3), b"\0\2", machine=b"\1\1\0")), calm(DISABLE_SKEIN)],
    "skein_no_adapters": [calm(enable_skein(7)), calm(enable_skein(names=b"\0", machine=b"\0\0\1\6\0\3"))],
    "skein_remove": [calm(enable_skein(7)), failing(DELETE_SUBLAYER, enable_skein(8)), calm(DISABLE_SKEIN)],
    "all": [calm(disable_internet()), calm(ENABLE_DHCP), calm(enable_leak_protection()), calm(DISABLE_LOCAL_NETWORK),
            calm(enable_skein(7, (1,))), calm(disable_internet()), calm(enable_leak_protection()),
            calm(ENABLE_LOCAL_NETWORK), calm(DISABLE_SKEIN), calm(DISABLE_LEAK_PROTECTION)],
    "app_id": [failing(APP_ID, disable_internet(apps=b"\0\1"), nth=2), calm(ENABLE_INTERNET)],
}


# emulator_calls: whether the switches are lenient, then calls; the first byte of each is its index in the table
NULL, NO_BLOB = b"\0", b"\0\0\0"
NAME = b"\x01" + wide("name") + NULL
OPEN_STATIC = bytes([0, 0, 0]) + NULL + b"\0"
OPEN_DYNAMIC = bytes([0, 0, 0]) + b"\x01" + b"\0" + NULL + NULL + b"\x01\x01" + NULL + NULL + b"\0" + b"\0"


def add_provider(key, session=0):
    return bytes([5, 1, key]) + NAME + b"\0" + NO_BLOB + NULL + bytes([session]) + NULL


def add_sublayer(key, session=0):
    return bytes([6, 1, key]) + NAME + b"\0" + NULL + NO_BLOB + number(7, 2) + bytes([session]) + NULL


def filter_record(layer, *tests, sublayer=4):
    return (bytes([1, 0]) + NAME + b"\0" + NULL + NO_BLOB + bytes([LAYERS.index(layer), sublayer]) +
            b"\x01" + number(15, 4) + bytes([len(tests)]) + b"".join(tests) + b"\0" + b"\x01" + b"\x01" +
            b"\0\0\0")


def add_filter(layer, *tests, sublayer=4, session=0):
    return bytes([8]) + filter_record(layer, *tests, sublayer=sublayer) + bytes([session]) + NULL + b"\0"


def test(field, data_type, data, match=0):
    return bytes([FIELDS.index(field), match, data_type]) + data


def add_context(key, session=0):
    general_type = b"\x08"
    return bytes([21, 1, key]) + NAME + b"\0" + NULL + NO_BLOB + general_type + NULL + bytes([session]) + NULL


def begin(session=0):
    return bytes([2, session, 0])


def every_filter(session=0):
    create = bytes([12, 2, session, 0]) + NULL + b"\0"
    read = bytes([12, 2, session, 1, 0, 1, 0, 0])
    destroy = bytes([12, 2, session, 2, 0])
    return create + read + read + destroy


SUBSCRIBE_EVENTS = bytes([23, 2, 0, 0, 1]) + NULL + bytes([0, 0, 0, 0])
# At 5, with protocol, addresses, ports and application: a drop by filter 7.
RAISE_DROP = (bytes([23, 3, 1, 5]) + number(0x13F, 2) + b"\0\x06" + bytes(16) + number(443, 2) + b"\x04a\0\0\0\0\x01" +
              NULL + NULL + NULL + NO_BLOB + b"\x07" + NO_BLOB + b"\x03\x01")
READ_EVENTS = bytes([23, 1, 0, 0]) + NULL + b"\0" + bytes([23, 1, 0, 1, 1, 1, 0, 0])

CALLS = {
    "objects": [OPEN_STATIC, add_provider(1), add_sublayer(2), add_filter("ALE_AUTH_CONNECT_V4", sublayer=2),
                every_filter()],
    "conditions": [OPEN_STATIC, add_filter("ALE_AUTH_CONNECT_V4",
                                           test("IP_REMOTE_PORT", 2, number(53, 4)),
                                           test("IP_REMOTE_ADDRESS", 16, b"\x01" + bytes(8)),
                                           test("IP_LOCAL_INTERFACE", 4, b"\x01" + number(1, 8), match=10)),
                   every_filter()],
    "transactions": [OPEN_DYNAMIC, OPEN_STATIC, begin(), add_sublayer(3), begin(session=1), bytes([3, 0]),
                     begin(), add_filter("IPFORWARD_V4", sublayer=3), bytes([4, 0]), bytes([1, 0]), every_filter()],
    "contexts": [OPEN_STATIC, add_provider(1), add_context(2), bytes([22, 0, 0, 0, 1, 2])],
    "events": [OPEN_STATIC, SUBSCRIBE_EVENTS, RAISE_DROP, READ_EVENTS],
    "wrong_types": [OPEN_STATIC, add_filter("ALE_AUTH_CONNECT_V6", test("IP_PROTOCOL", 2, number(17, 4)),
                                            test("IP_REMOTE_ADDRESS", 18, b"\x01\x01\x01\x02\x01\x02"))],
}


# policy_snapshot: four connections, then sublayers and filters, each filter with its effective weight
CONNECTION = (b"\0\0" + number(0x0A000001, 4) + b"\x01" + number(53, 2) + b"\x11" + b"\x01" + number(1, 4) +
              number(7, 8) + b"\x02a\0")
SUBLAYER = bytes([1, 2]) + NAME + b"\0" + NULL + NO_BLOB + number(7, 2)
WEIGHT = b"\x04\x01" + number(0xF000000000000000, 8)
READ_FILTERS = {
    "numbers": [filter_record("ALE_AUTH_CONNECT_V4", test("IP_REMOTE_PORT", 2, number(53, 4)),
                              test("IP_LOCAL_INTERFACE", 4, b"\x01" + number(7, 8), match=10), sublayer=2)],
    "networks": [filter_record("ALE_AUTH_CONNECT_V4", test("IP_REMOTE_ADDRESS", 16, b"\x01" + b"\0\0\0\x0a\0\0\0\xff")),
                 filter_record("ALE_AUTH_CONNECT_V4")],
    "flags": [filter_record("ALE_AUTH_CONNECT_V4", test("FLAGS", 3, number(1, 4))),
              filter_record("ALE_FLOW_ESTABLISHED_V4", test("FLAGS", 3, number(5, 4), match=8))],
    "applications": [filter_record("ALE_AUTH_RECV_ACCEPT_V4", test("ALE_APP_ID", 9, b"\x01\x04a\0\0\0\0\x01"))],
}

# dump_reader: a dump as it is
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
GUID = "{11112222-3333-4444-5555-66667777888%x}"


def element(name, *inner):
    return f"<{name}>{''.join(inner)}</{name}>" if inner else f"<{name}/>"


def items(name, *inner):
    return f'<{name} numItems="{len(inner)}">{"".join(element("item", one) for one in inner)}</{name}>'


def named(text):
    return element("displayData", element("name", text), "<description/>")


def value(name, data_type, *inner):
    return element(name, element("type", data_type), *inner)


def dumped_condition(field, match, *test):
    return (element("fieldKey", f"FWPM_CONDITION_{field}") + element("matchType", f"FWP_MATCH_{match}") +
            value("conditionValue", *test))


def dumped_filter(*tests, flags="<flags/>", context="<rawContext>0</rawContext>", action="FWP_ACTION_BLOCK"):
    return "\n".join((
        element("filterKey", GUID % 1), named("a &amp; <![CDATA[<b>]]>&#x1F512;"), flags,
        element("providerKey", GUID % 2), element("providerData", "<data>00ff</data><asString>..</asString>"),
        element("layerKey", "FWPM_LAYER_ALE_AUTH_CONNECT_V4"), element("subLayerKey", "FWPM_SUBLAYER_NEW"),
        value("weight", "FWP_EMPTY"), items("filterCondition", *tests),
        element("action", element("type", action), "<filterType/>"), context, "<reserved/>",
        element("filterId", "70000"), value("effectiveWeight", "FWP_UINT64", element("uint64", "0"))))


def dumped_filters(*filters):
    return HEAD + element("wfpdiag", items("filters", *filters))


def number_range(data_type, name, low, high):
    return ("FWP_RANGE_TYPE", element("rangeValue", value("valueLow", data_type, element(name, low)),
                                      value("valueHigh", data_type, element(name, high))))


PROVIDER = element("providerKey", GUID % 2) + named("p") + "<flags/><providerData/><serviceName>s</serviceName>"
LAYER = element("item", element(
    "layer", element("layerKey", "FWPM_LAYER_ALE_AUTH_CONNECT_V4"), named("l"),
    items("flags", "FWPM_LAYER_FLAG_KERNEL", "00000100"),
    items("field", element("fieldKey", "FWPM_CONDITION_IP_PROTOCOL") + element("type", "FWPM_FIELD_RAW_DATA") +
          element("dataType", "FWP_UINT8")),
    element("defaultSubLayerKey", "FWPM_SUBLAYER_UNIVERSAL"), element("layerId", "48")),
    items("callouts", element("calloutKey", GUID % 3) + named("c") + items("flags", "FWPM_CALLOUT_FLAG_REGISTERED") +
          "<providerKey/><providerData/>" + element("applicableLayer", "FWPM_LAYER_ALE_AUTH_CONNECT_V4") +
          element("calloutId", "256")),
    items("filters", dumped_filter(flags=items("flags", "FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT", "FWPM_FILTER_FLAG_NEW"),
                                   context=element("providerContextKey", GUID % 4))))
CONTEXT = (element("providerContextKey", GUID % 4) + named("x") + "<flags/><providerKey/><providerData/>")
STATE = HEAD + element(
    "wfpstate", "<timeStamp>2026-11-01</timeStamp><sessions/>", element("layers", LAYER), items("providers", PROVIDER),
    items("providerContexts", CONTEXT + element("type", "FWPM_GENERAL_CONTEXT") +
          element("dataBuffer", "<data>4100</data>") + element("providerContextId", "1"),
          CONTEXT + element("type", "FWPM_CLASSIFY_OPTIONS_CONTEXT") + "<options a='1'><o/></options>" +
          element("providerContextId", "2")),
    items("subLayers", element("subLayerKey", GUID % 5) + named("s") + "<flags/><providerKey/><providerData/>" +
          element("weight", "7")), "<news/>") + "<firewallState/>"
FILTERS_DUMP = dumped_filters(
    dumped_filter(dumped_condition("IP_REMOTE_PORT", "EQUAL", "FWP_UINT16", element("uint16", "53")),
                  dumped_condition("IP_REMOTE_ADDRESS", "EQUAL", "FWP_UINT32", element("uint32", "10.0.0.1")),
                  dumped_condition("IP_LOCAL_INTERFACE", "NOT_EQUAL", "FWP_UINT64", element("uint64", "7"))),
    dumped_filter(flags=items("flags", "FWPM_FILTER_FLAG_INDEXED", "0000A000"), action="FWP_ACTION_PERMIT"))
DUMPS = {
    "filters": FILTERS_DUMP.encode(),
    "state": STATE.encode(),
    "utf16": b"\xff\xfe" + FILTERS_DUMP.replace("\n", "\r\n").encode("utf-16-le"),
    "utf16_big_endian": b"\xfe\xff" + dumped_filters().encode("utf-16-be"),
    "ranges": b"\xef\xbb\xbf" + dumped_filters(dumped_filter(
        dumped_condition("IP_REMOTE_PORT", "RANGE", *number_range("FWP_UINT16", "uint16", "1", "2")),
        dumped_condition("IP_REMOTE_ADDRESS", "RANGE", *number_range("FWP_UINT32", "uint32", "10.0.0.0", "10.0.0.9")),
        dumped_condition("IP_REMOTE_ADDRESS", "RANGE",
                         *number_range("FWP_BYTE_ARRAY16_TYPE", "byteArray16", "fe80::", "fe80::ffff")))).encode(),
    "networks": dumped_filters(dumped_filter(
        dumped_condition("IP_REMOTE_ADDRESS", "EQUAL", "FWP_V4_ADDR_MASK",
                         element("v4AddrMask", element("addr", "10.0.0.0"), element("mask", "255.0.0.0"))),
        dumped_condition("IP_REMOTE_ADDRESS", "EQUAL", "FWP_V6_ADDR_MASK",
                         element("v6AddrMask", element("addr", "fe80::"), element("prefixLength", "10"))))).encode(),
    "identities": dumped_filters(dumped_filter(
        dumped_condition("ALE_APP_ID", "EQUAL", "FWP_BYTE_BLOB_TYPE", element("byteBlob", element("data", "61000000"))),
        dumped_condition("ALE_PACKAGE_ID", "NOT_EQUAL", "FWP_SID", element("sid", "S-1-0-0")),
        dumped_condition("ALE_USER_ID", "EQUAL", "FWP_SECURITY_DESCRIPTOR_TYPE",
                         element("sd", 'O:SYD:(A;;CC;;;DU)(XA;;CC;;;WD;(a Contains "b"))S:NO_ACCESS_CONTROL')))).encode(),
    "other_values": dumped_filters(dumped_filter(
        dumped_condition("NEW", "LESS", "FWP_INT8", element("int8", "-1")),
        dumped_condition("NEW", "GREATER", "FWP_DOUBLE", element("double64", "0.5")),
        dumped_condition("NEW", "EQUAL", "FWP_FLOAT", element("float32", "1e10")),
        dumped_condition("NEW", "PREFIX", "FWP_UNICODE_STRING_TYPE", element("unicodeString", "a")),
        dumped_condition("MAC_LOCAL_ADDRESS", "EQUAL", "FWP_BYTE_ARRAY6_TYPE",
                         element("byteArray6", "00-11-22-33-44-55")))).encode(),
    "comments": (HEAD + "<!-- a --><?b c?><wfpdiag><filters/><providers></providers></wfpdiag>").encode(),
    "document_type": (HEAD + '<!DOCTYPE a [<!ENTITY b "c">]><wfpdiag>&b;</wfpdiag>').encode(),
}

# security_descriptor_text: whether it is text, then the text or the bytes
DESCRIPTORS = {
    "windows": "O:SYG:SYD:(A;;CCRC;;;S-1-5-80-1-2-3-4-5)(A;NP;CC;;;AC)S:NO_ACCESS_CONTROL",
    "package": 'O:SYG:SYD:(XA;;CC;;;WD;(WIN://SYSAPPID Contains "a_b"))(A;;CC;;;S-1-15-3-1)',
    "operators": 'D:(XD;;GA;;;WD;(!(a == {1, -0x1f, +017, "b%0022", #00ff, SID(BA)}) || Member_of {SID(WD)} && '
                 "(exists @User.a || @Device.b >= @Resource.c)))",
    "objects": "D:PAIAR(OA;CIIO;CR;00112233-4455-6677-8899-aabbccddeeff;;PS)(ZA;;CC;;;WD;(not_exists a))",
    "audit": "D:S:(AU;SAFA;FA;;;WD)(ML;;NWNRNX;;;ME)(SP;;;;;S-1-17-1)(TL;;0x1;;;S-1-19-512-8192)(FL;TP;GX;;;WD)",
    "attributes": 'S:(RA;;;;;WD;("a",TS,0x10,"b","c"))(RA;;;;;WD;("a",TI,0,-5))(RA;;;;;WD;("a",TU,0,5))'
                  '(RA;;;;;WD;("a",TD,0,SID(BA)))(RA;;;;;WD;("a",TX,0,#00ff))(RA;;;;;WD;("a",TB,0,1))',
    "domain": "O:DAG:DUD:(A;;0x1200a9;;;S-1-0x123456789abc-1)",
}
# Head, an owner, then a list of one entry with a condition: exists a && a == 5.
DESCRIPTOR_BYTES = bytes.fromhex(
    "01000480 14000000 00000000 00000000 20000000 010100000000000512000000"
    "02003c0001000000 0900340001000000 010100000000000100000000"
    "61727478 f8020000006100 87 f8020000006100 04050000000000000003 02 80 a0")

for target, seeds in {
        "registry_property": REGISTRY,
        "address_texts": ADDRESSES,
        "filter_from_native": FILTERS,
        "command_sequence": {name: wide("corvane") + b"\0" + b"".join(steps) for name, steps in COMMANDS.items()},
        "emulator_calls": {name: b"\0" + b"".join(calls) for name, calls in CALLS.items()},
        "policy_snapshot": {name: CONNECTION * 4 + b"\x01" + SUBLAYER + b"".join(record + WEIGHT for record in records)
                            for name, records in READ_FILTERS.items()},
        "dump_reader": DUMPS,
        "security_descriptor_text": {name: b"\x01" + sddl.encode() for name, sddl in DESCRIPTORS.items()} |
                                    {"bytes": b"\x00" + DESCRIPTOR_BYTES},
}.items():
    folder = HERE / "corpus" / target
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name, case in seeds.items():
        (folder / name).write_bytes(case)
