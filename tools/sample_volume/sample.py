"""The sample volume: a small disk with everything on it that the program has to cope with."""

from . import catalog
from .applications import APPLICATIONS, GONE, INSTALLED, LINKED, UNLISTED
from .bundles import write_bundle
from .launch_items import write_launch_items
from .leftovers import write_leftovers, write_surroundings


def write_sample_volume(volume):
    for application in INSTALLED + UNLISTED + [LINKED]:
        write_bundle(volume, application)
    volume.link(f"{APPLICATIONS}/{LINKED.file}", LINKED.path)
    for application in INSTALLED + [LINKED, GONE]:
        write_leftovers(volume, application)
    write_surroundings(volume)
    write_launch_items(volume)
    volume.file(catalog.PATH, catalog.catalog(volume, INSTALLED, LINKED, GONE))
