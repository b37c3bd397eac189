"""The list of applications that Orvane keeps on a Mac, as it would have saved it on the sample volume."""

import json
import os
import unicodedata
import urllib.parse

from .applications import APPLICATIONS, HOME
from .volume import DATE, allocated

PATH = HOME + "/Library/Application Support/Orvane/applications.json"
MAC_EPOCH = 978_307_200  # 1 January 2001, as seconds since 1970
PACKAGES = (b".app", b".appex", b".plugin")  # whose contents count for themselves


def catalog(volume, applications, linked, gone):
    """The bytes of the catalog: what is installed, and one application whose bundle has gone since."""
    records = [_record(application, _bundle_size(volume, application)) for application in applications]
    records.append(_record(gone, gone.kilobytes * 1024))
    link = {"url": file_url(f"{APPLICATIONS}/{linked.file}", is_folder=False), "modifiedAt": DATE - MAC_EPOCH}
    records.append({**_record(linked, 0), **link})
    return encoded(sorted(records, key=lambda record: _sort_key(record["name"])))


def encoded(records):
    """As a Mac's encoder writes it: compact, with every slash escaped."""
    return json.dumps(records, ensure_ascii=False, separators=(",", ":")).replace("/", "\\/").encode()


def file_url(path, is_folder):
    return "file://" + urllib.parse.quote(path, safe="!$&'()*+,-./:;=@_~") + ("/" if is_folder else "")


def _record(application, size):
    identifier = {"bundleIdentifier": application.identifier} if application.identifier else {}
    return {
        "url": file_url(application.path, is_folder=True),
        "name": application.name,
        **identifier,
        "version": application.shown_version,
        "size": size,
        "modifiedAt": application.date - MAC_EPOCH,
        "isSystemApplication": application.path.startswith("/System/"),
        "isInstalled": True,
    }


def _bundle_size(volume, application):
    """What its files take on the disk, without hidden ones and the bundles within."""
    total = 0
    for folder, folders, files in os.walk(volume.real_path(application.path)):
        folders[:] = [name for name in folders if not name.startswith(b".") and not name.endswith(PACKAGES)]
        for path in (os.path.join(folder, name) for name in files if not name.startswith(b".")):
            total += 0 if os.path.islink(path) else allocated(os.path.getsize(path))
    return total


def _sort_key(name):
    """Near to a dictionary's order: accents and case aside, signs before letters, script after script."""
    letters = unicodedata.normalize("NFD", name.casefold())
    return [(sign.isalpha(), sign) for sign in letters if not unicodedata.combining(sign)]
