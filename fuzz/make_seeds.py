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


FIELDS = names_in("catalog/Fields.h", r'^    \{"(\w+)", "[0-9a-f-]{36}"_guid')
LAYERS = names_in("catalog/Layers.cpp", r'^    \{"(\w+)", "[0-9a-f-]{36}"_guid')


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


def begin(session=0):
    return bytes([2, session, 0])


def every_filter(session=0):
    create = bytes([12, 2, session, 0]) + NULL + b"\0"
    read = bytes([12, 2, session, 1, 0, 1, 0, 0])
    destroy = bytes([12, 2, session, 2, 0])
    return create + read + read + destroy


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

for target, seeds in {
        "registry_property": REGISTRY,
        "address_texts": ADDRESSES,
        "filter_from_native": FILTERS,
        "command_sequence": {name: wide("corvane") + b"\0" + b"".join(steps) for name, steps in COMMANDS.items()},
        "emulator_calls": {name: b"\0" + b"".join(calls) for name, calls in CALLS.items()},
        "policy_snapshot": {name: CONNECTION * 4 + b"\x01" + SUBLAYER + b"".join(record + WEIGHT for record in records)
                            for name, records in READ_FILTERS.items()},
}.items():
    folder = HERE / "corpus" / target
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name, case in seeds.items():
        (folder / name).write_bytes(case)
