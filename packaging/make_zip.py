#!/usr/bin/env python3
"""make_zip.py ZIP FOLDER: packs what is in a folder, so that the same files always give the same bytes.

The order is that of the names, every time is SOURCE_DATE_EPOCH, and owners and rights are left out."""
import os
import pathlib
import sys
import time
import zipfile

zip_name, folder = sys.argv[1], pathlib.Path(sys.argv[2])
moment = time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"]))[:6]

with zipfile.ZipFile(zip_name, "w", zipfile.ZIP_DEFLATED) as archive:
    for name in sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()):
        entry = zipfile.ZipInfo(name, moment)
        entry.compress_type = zipfile.ZIP_DEFLATED
        archive.writestr(entry, (folder / name).read_bytes())
