#!/usr/bin/env python3
"""settle_nuget_package.py FOLDER: makes an unpacked NuGet package depend on nothing but what it holds.

NuGet writes the kernel's version into the package's properties, names them and the package's relations as it likes,
and lists the types of content in the order in which the file system lists the files."""
import hashlib
import pathlib
import re
import sys

folder = pathlib.Path(sys.argv[1])

[properties] = folder.glob("package/services/metadata/core-properties/*.psmdcp")
text = properties.read_text(encoding="utf-8-sig")
text = re.sub(r"<lastModifiedBy>.*?</lastModifiedBy>", "<lastModifiedBy>NuGet</lastModifiedBy>", text)
properties.write_text(text, encoding="utf-8")
settled = properties.with_stem(hashlib.sha256(text.encode()).hexdigest()[:32])
properties.rename(settled)

relations = folder / "_rels/.rels"
text = relations.read_text(encoding="utf-8-sig").replace("/" + properties.name, "/" + settled.name)
numbers = iter(range(1, 1000))
text = re.sub(r'Id="\w+"', lambda match: f'Id="R{next(numbers)}"', text)
relations.write_text(text, encoding="utf-8")

types = folder / "[Content_Types].xml"
text = types.read_text(encoding="utf-8-sig")
entries = re.findall(r"<Default [^>]*/>", text)
first = text.index(entries[0])
types.write_text(text[:first] + "".join(sorted(entries)) + text[first + len("".join(entries)) :], encoding="utf-8")
