"""Writes application bundles: their information, program, resources, and the bundles within them."""

import plistlib

from . import content
from .icons import icon_file


def write_bundle(volume, application):
    flat = application.information_format == "flat"
    inside = application.path if flat else application.path + "/Contents"
    volume.folder(application.path, application.date)
    if application.information_format is None:
        volume.file(inside + "/Resources/nothing.dat", content.noise(application.kilobytes * 1024))
        return
    volume.file(inside + "/Info.plist", _information(application))
    volume.file(inside + "/PkgInfo", b"APPL????")
    _write_programs(volume, inside, inside if flat else inside + "/MacOS", application)
    _write_resources(volume, inside if flat else inside + "/Resources", application)
    for path in application.nested:
        _write_nested(volume, f"{application.path}/{path}", application.identifier)


def _information(application):
    keys = {
        "CFBundleDevelopmentRegion": "en",
        "CFBundleExecutable": application.stem,
        "CFBundleIconFile": application.icon,
        "CFBundleIdentifier": application.identifier,
        "CFBundleInfoDictionaryVersion": "6.0",
        "CFBundleName": application.stem,
        "CFBundlePackageType": "APPL",
        "CFBundleShortVersionString": application.version,
        "CFBundleVersion": application.version,
        "LSMinimumSystemVersion": "12.0",
        **application.information,
    }
    return _property_list(keys, application.information_format == "binary")


def _property_list(keys, binary=False):
    present = {key: value for key, value in keys.items() if value is not None}
    form = plistlib.FMT_BINARY if binary else plistlib.FMT_XML
    return plistlib.dumps(present, fmt=form, sort_keys=False)


def _write_programs(volume, inside, folder, application):
    """Half the application's size is its program, a quarter a framework with the usual links in it."""
    size = application.kilobytes * 1024
    volume.file(f"{folder}/{application.stem}", content.program(size // 2), 0o755)
    framework = f"{inside}/Frameworks/Workshop.framework"
    volume.file(framework + "/Versions/A/Workshop", content.program(size // 4), 0o755)
    volume.file(framework + "/Versions/A/Resources/Info.plist",
                _property_list({"CFBundleIdentifier": "org.example.workshop", "CFBundlePackageType": "FMWK"}))
    volume.link(framework + "/Versions/Current", "A")
    volume.link(framework + "/Workshop", "Versions/Current/Workshop")
    volume.link(framework + "/Resources", "Versions/Current/Resources")


def _write_resources(volume, resources, application):
    volume.file(resources + "/Assets.car", content.noise(application.kilobytes * 1024 // 4))
    for language, hello in (("en", "Open"), ("de", "Öffnen"), ("ja", "開く")):
        volume.file(f"{resources}/{language}.lproj/Localizable.strings", f'"Open" = "{hello}";\n'.encode())
    for folder, name in application.names.items():
        strings = f'/* What it is called. */\nCFBundleDisplayName = "{name}";\nCFBundleName = "{name}";\n'
        volume.file(f"{resources}/{folder}/InfoPlist.strings", b"\xff\xfe" + strings.encode("utf-16-le"))
    volume.file(resources + "/.layout", b"hidden\n")
    volume.link(resources + "/Manual.pdf", "../Documentation/not-shipped.pdf")
    if application.icon:
        icon = icon_file(application.icon, application.icon_pixels)
        volume.file(f"{resources}/{application.icon}.icns", icon)


def _write_nested(volume, path, identifier):
    """A helper, extension or plug-in inside an application."""
    name, _, extension = path.rpartition("/")[2].rpartition(".")
    volume.file(path + "/Contents/Info.plist", _property_list({
        "CFBundleExecutable": name,
        "CFBundleIdentifier": f"{identifier}.{extension}",
        "CFBundleName": name,
        "CFBundlePackageType": {"app": "APPL", "appex": "XPC!"}.get(extension, "BNDL"),
        "CFBundleShortVersionString": "1.0",
        "LSUIElement": True,
    }))
    volume.file(f"{path}/Contents/MacOS/{name}", content.program(120 * 1024), 0o755)
