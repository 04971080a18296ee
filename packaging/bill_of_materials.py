#!/usr/bin/env python3
"""bill_of_materials.py VERSION LIBRARY TOOL EMULATOR: writes what the three files are made of, as CycloneDX.

The versions of what is linked in are those of the Debian packages that it comes from."""
import datetime
import hashlib
import json
import os
import pathlib
import subprocess
import sys
import uuid

version, library, tool, emulator = sys.argv[1], *map(pathlib.Path, sys.argv[2:])

GCC = {"expression": "GPL-3.0-or-later WITH GCC-exception-3.1"}
# Debian package, what of it is linked in, its licence.
RUNTIME = [
    ("g++-mingw-w64-x86-64-posix", "libstdc++", GCC),
    ("gcc-mingw-w64-x86-64-posix", "libgcc", GCC),
    ("mingw-w64-x86-64-dev", "mingw-w64 and winpthreads", {"license": {"name": "see licenses/"}}),
]
OF_THE_TOOL = [
    ("libcli11-dev", "CLI11", {"license": {"id": "BSD-3-Clause"}}),
    ("nlohmann-json3-dev", "JSON for Modern C++", {"license": {"id": "MIT"}}),
    ("librapidxml-dev", "RapidXML", {"license": {"id": "MIT"}}),
]
SHIPPED = [
    (library, "library", "firewall layer of a VPN client", RUNTIME),
    (tool, "application", "command-line tool", RUNTIME + OF_THE_TOOL),
    (emulator, "library", "emulator of the filtering engine", RUNTIME),
]


def package_component(package, name, licence):
    """A part that comes from a Debian package."""
    fields = "${Version}\t${Homepage}\t${Architecture}"
    query = subprocess.run(["dpkg-query", "-W", "-f", fields, package], capture_output=True, text=True)
    if query.returncode != 0:
        sys.exit(f"{name} is taken from the Debian package {package}, which is not installed: run scripts/setup.sh")
    number, homepage, architecture = query.stdout.split("\t")
    purl = f"pkg:deb/debian/{package.replace('+', '%2B')}@{number.replace('+', '%2B')}?arch={architecture}"
    return {
        "type": "library",
        "bom-ref": purl,
        "name": name,
        "version": number,
        "licenses": [licence],
        "purl": purl,
        "externalReferences": [{"type": "website", "url": homepage}],
    }


def file_component(path, kind, description):
    """A file that is shipped."""
    return {
        "type": kind,
        "bom-ref": path.name,
        "name": path.name,
        "version": version,
        "description": description,
        "hashes": [{"alg": "SHA-256", "content": hashlib.sha256(path.read_bytes()).hexdigest()}],
    }


product = "Corvane.Native.Firewall"
linked = [package_component(*entry) for entry in RUNTIME + OF_THE_TOOL]
reference = {entry[0]: component["bom-ref"] for entry, component in zip(RUNTIME + OF_THE_TOOL, linked)}
shipped = [file_component(path, kind, description) for path, kind, description, _ in SHIPPED]
moment = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), datetime.timezone.utc)
content = "".join(file["hashes"][0]["content"] for file in shipped)
bill = {
    "bomFormat": "CycloneDX",
    "specVersion": "1.5",
    "serialNumber": uuid.uuid5(uuid.NAMESPACE_URL, f"{product}/{version}/{content}").urn,
    "version": 1,
    "metadata": {
        "timestamp": moment.strftime("%Y-%m-%dT%H:%M:%SZ"),
        "component": {"type": "library", "bom-ref": product, "name": product, "version": version},
    },
    "components": shipped + linked,
    "dependencies": [{"ref": product, "dependsOn": [path.name for path, *_ in SHIPPED]}]
    + [{"ref": path.name, "dependsOn": [reference[part[0]] for part in parts]} for path, _, _, parts in SHIPPED],
}
print(json.dumps(bill, indent=2))
