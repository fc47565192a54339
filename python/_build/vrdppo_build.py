"""Builds the vrdppo wheel with the standard library alone.

Debian's setuptools in a venv cannot make a wheel without the wheel package, and a machine
without a network cannot fetch one; the package is a few pure-Python files, so this backend
zips them itself. Asked with `--config-settings library=PATH` (or with VRDPPO_LIBRARY set while
building), the wheel carries that libvrdppo.so beside the module, so the installed module finds
it with no environment; otherwise the module finds the library where it looks at run time.
"""

import base64
import hashlib
import io
import os
import pathlib
import re
import tarfile
import time
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
NAME = "vrdppo"
TAG = "py3-none-any"


def _version():
    text = (ROOT / NAME / "_version.py").read_text()
    return re.search(r'__version__ = "([^"]+)"', text).group(1)


def _metadata():
    return (f"Metadata-Version: 2.1\nName: {NAME}\nVersion: {_version()}\n"
            "Summary: The plant's persistence classes from Python, over libvrdppo's C "
            "interface\nRequires-Python: >=3.9\n")


def _dist_info():
    return f"{NAME}-{_version()}.dist-info"


def _package_files():
    for path in sorted((ROOT / NAME).rglob("*")):
        if path.is_file() and "__pycache__" not in path.parts and path.suffix in (
                ".py", ".pyi", ".typed"):
            yield path.relative_to(ROOT).as_posix(), path.read_bytes()


def _library(config_settings):
    given = (config_settings or {}).get("library") or os.environ.get("VRDPPO_LIBRARY")
    if not given:
        return None
    # pip builds in the package's folder; a relative path is meant from where pip was run, which
    # the shell's PWD still names.
    tried = [pathlib.Path(given)]
    if not tried[0].is_absolute() and os.environ.get("PWD"):
        tried.insert(0, pathlib.Path(os.environ["PWD"]) / given)
    for path in tried:
        if path.resolve().is_file():
            return path.resolve().read_bytes()
    raise FileNotFoundError(f"library={given}: no such file (looked for "
                            + " and ".join(str(p.resolve()) for p in tried) + ")")


def _record_line(name, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{name},sha256={digest},{len(data)}\n"


def _write_wheel(wheel_directory, entries):
    dist_info = _dist_info()
    entries = list(entries) + [
        (f"{dist_info}/METADATA", _metadata().encode()),
        (f"{dist_info}/WHEEL", (f"Wheel-Version: 1.0\nGenerator: vrdppo_build\n"
                                f"Root-Is-Purelib: true\nTag: {TAG}\n").encode()),
        (f"{dist_info}/top_level.txt", f"{NAME}\n".encode()),
    ]
    record = "".join(_record_line(n, d) for n, d in entries) + f"{dist_info}/RECORD,,\n"
    entries.append((f"{dist_info}/RECORD", record.encode()))
    filename = f"{NAME}-{_version()}-{TAG}.whl"
    with zipfile.ZipFile(pathlib.Path(wheel_directory) / filename, "w",
                         zipfile.ZIP_DEFLATED) as z:
        for name, data in entries:
            info = zipfile.ZipInfo(name, date_time=(1980, 1, 1, 0, 0, 0))
            # The library must stay executable once unpacked; the rest is plain files.
            mode = 0o755 if name.endswith(".so") else 0o644
            info.external_attr = (0o100000 | mode) << 16
            info.compress_type = zipfile.ZIP_DEFLATED
            z.writestr(info, data)
    return filename


def get_requires_for_build_wheel(config_settings=None):
    return []


def get_requires_for_build_sdist(config_settings=None):
    return []


def get_requires_for_build_editable(config_settings=None):
    return []


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    folder = pathlib.Path(metadata_directory) / _dist_info()
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "METADATA").write_text(_metadata())
    return folder.name


prepare_metadata_for_build_editable = prepare_metadata_for_build_wheel


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    entries = list(_package_files())
    library = _library(config_settings)
    if library is not None:
        entries.append((f"{NAME}/libvrdppo.so", library))
    return _write_wheel(wheel_directory, entries)


def build_editable(wheel_directory, config_settings=None, metadata_directory=None):
    # The source folder on the path: edits show at once, and the library is found as from it.
    return _write_wheel(wheel_directory, [(f"{NAME}.pth", f"{ROOT}\n".encode())])


def build_sdist(sdist_directory, config_settings=None):
    base = f"{NAME}-{_version()}"
    filename = f"{base}.tar.gz"
    with tarfile.open(pathlib.Path(sdist_directory) / filename, "w:gz") as tar:
        files = [("pyproject.toml", (ROOT / "pyproject.toml").read_bytes()),
                 ("_build/vrdppo_build.py", pathlib.Path(__file__).read_bytes()),
                 ("PKG-INFO", _metadata().encode()), *_package_files()]
        for name, data in files:
            info = tarfile.TarInfo(f"{base}/{name}")
            info.size, info.mtime, info.mode = len(data), int(time.time()), 0o644
            tar.addfile(info, io.BytesIO(data))
    return filename
