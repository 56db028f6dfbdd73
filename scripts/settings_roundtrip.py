#!/usr/bin/env python3
"""Moves settings between Wine's registry and the Linux settings store with
each side's own tools, and checks that every value arrives unchanged.

  Wine -> Linux: values set in Wine's registry, "wine regedit /E",
                 "quiltool reg import", "quiltool reg export".
  Linux -> Wine: values set with "quiltool reg add", "quiltool reg export",
                 "wine regedit /S", "wine regedit /E" and "wine reg query".

Both directions compare the two sides' exports value by value (type and
data bytes). Usage: settings_roundtrip.py QUILTOOL WINE
WINEPREFIX is taken from the environment when set, else a private prefix
is made in a temporary folder (the first start takes a while).
"""

import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD = 1, 2, 3, 4, 7, 11


def utf16(text, terminator=True):
    return (text + ("\0" if terminator else "")).encode("utf-16-le")


def parse_reg(path):
    """{key (upper-cased): {value name (upper-cased): (type, bytes)}} of a .reg file."""
    raw = open(path, "rb").read()
    if raw.startswith(b"\xff\xfe"):
        text, unicode = raw[2:].decode("utf-16-le"), True
    else:
        text, unicode = raw.decode("latin-1"), False
    lines, pending = [], ""
    for line in text.splitlines():
        line = pending + line.strip() if pending else line.strip()
        if line.endswith("\\") and "=hex" in line:
            pending = line[:-1]
            continue
        pending = ""
        lines.append(line)
    keys, current = {}, None
    for line in lines[1:]:
        if not line or line.startswith(";"):
            continue
        if line.startswith("["):
            current = keys.setdefault(line[1:line.rindex("]")].upper(), {})
            continue
        m = re.match(r'^(@|"((?:[^"\\]|\\.)*)")=(.*)$', line)
        if not m or current is None:
            raise ValueError("%s: cannot read line %r" % (path, line))
        name = "" if m.group(1) == "@" else re.sub(r"\\(.)", r"\1", m.group(2))
        data = m.group(3)
        if data.startswith('"'):
            value = (REG_SZ, utf16(re.sub(r"\\(.)", r"\1", data[1:-1])))
        elif data.startswith("dword:"):
            value = (REG_DWORD, int(data[6:], 16).to_bytes(4, "little"))
        else:
            hm = re.match(r"^hex(?:\(([0-9a-fA-F]+)\))?:(.*)$", data)
            kind = int(hm.group(1), 16) if hm.group(1) else REG_BINARY
            body = bytes(int(b, 16) for b in hm.group(2).replace(" ", "").split(",") if b)
            if not unicode and kind in (REG_EXPAND_SZ, REG_MULTI_SZ):
                body = body.decode("latin-1").encode("utf-16-le")
            value = (kind, body)
        current[name.upper()] = value
    return keys


def normal(value):
    """Texts compare without a trailing terminator, which either tool may add."""
    kind, data = value
    if kind in (REG_SZ, REG_EXPAND_SZ) and data.endswith(b"\0\0") and len(data) % 2 == 0:
        data = data[:-2]
    return kind, data


def compare(expected, got, what):
    problems = []
    for key, values in expected.items():
        if key not in got:
            problems.append("%s: key %s missing" % (what, key))
            continue
        for name, value in values.items():
            other = got[key].get(name)
            if other is None:
                problems.append("%s: %s\\%s missing" % (what, key, name))
            elif normal(other) != normal(value):
                problems.append("%s: %s\\%s differs: %r != %r" % (what, key, name, other, value))
        for name in got[key]:
            if name not in values:
                problems.append("%s: %s\\%s is extra" % (what, key, name))
    return problems


def reg_file(path, key, values):
    """A version 5 .reg file of one key; values are (name, type, bytes)."""
    out = ["Windows Registry Editor Version 5.00", "", "[%s]" % key]
    for name, kind, data in values:
        label = "@" if not name else '"%s"' % name.replace("\\", "\\\\").replace('"', '\\"')
        prefix = "hex:" if kind == REG_BINARY else "hex(%x):" % kind
        out.append("%s=%s%s" % (label, prefix, ",".join("%02x" % b for b in data)))
    with open(path, "wb") as f:
        f.write(b"\xff\xfe" + ("\r\n".join(out) + "\r\n\r\n").encode("utf-16-le"))


def main():
    if len(sys.argv) != 3:
        print(__doc__)
        return 2
    quiltool, wine = sys.argv[1], sys.argv[2]
    work = tempfile.mkdtemp(prefix="quiltool-roundtrip-")
    private_prefix = "WINEPREFIX" not in os.environ
    env = dict(os.environ)
    env.update({
        "WINEDEBUG": "-all",
        "WINEDLLOVERRIDES": "mscoree,mshtml=",
        "QUILTOOL_HKCU_DIR": os.path.join(work, "hkcu"),
        "QUILTOOL_HKLM_DIR": os.path.join(work, "hklm"),
    })
    if private_prefix:
        env["WINEPREFIX"] = os.path.join(work, "prefix")
    unique = "QtRoundTrip-%d-%d" % (os.getpid(), random.randrange(1 << 30))
    wine_key = "HKEY_CURRENT_USER\\Software\\%s\\FromWine" % unique
    linux_key = "HKEY_CURRENT_USER\\Software\\%s\\FromLinux" % unique

    def run(*args):
        r = subprocess.run(list(args), env=env, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=240)
        if r.returncode != 0:
            raise RuntimeError("%s failed (%d): %s" % (" ".join(args), r.returncode, r.stderr.decode("latin-1")))
        return r.stdout

    problems = []
    try:
        # Wine -> Linux: every type, texts beyond ASCII and the BMP, a
        # subkey, a text without terminator.
        values = [
            ("", REG_SZ, utf16("default text")),
            ("Text", REG_SZ, utf16("h\u00e9llo w\u00f6rld \u20ac \U0001F600")),
            ("Bare", REG_SZ, utf16("no terminator", False)),
            ('Quote "and" slash\\', REG_SZ, utf16('C:\\dir "x"')),
            ("Number", REG_DWORD, (305419896).to_bytes(4, "little")),
            ("Big", REG_QWORD, (0x1122334455667788).to_bytes(8, "little")),
            ("Expand", REG_EXPAND_SZ, utf16("%SystemRoot%\\system32")),
            ("Multi", REG_MULTI_SZ, utf16("one") + utf16("two") + b"\0\0"),
            ("Blob", REG_BINARY, bytes(range(0, 256, 3))),
        ]
        source = os.path.join(work, "source.reg")
        reg_file(source, wine_key, values)
        with open(source, "ab") as f:
            f.write(("[%s\\Child]\r\n\"Deep\"=dword:00000007\r\n\r\n" % wine_key).encode("utf-16-le"))
        run(wine, "regedit", "/S", source)
        from_wine = os.path.join(work, "from-wine.reg")
        run(wine, "regedit", "/E", from_wine, wine_key)
        run(quiltool, "reg", "import", from_wine)
        back = os.path.join(work, "linux-copy.reg")
        run(quiltool, "reg", "export", wine_key, back)
        wine_side, linux_side = parse_reg(from_wine), parse_reg(back)
        if len(wine_side.get(wine_key.upper(), {})) != len(values):
            problems.append("Wine's export lacks values: %r" % wine_side)
        problems += compare(wine_side, linux_side, "Wine -> Linux")

        # Linux -> Wine, the values set as support staff would.
        adds = [
            ["/v", "ShowStringIDs", "/d", "yesplease"],
            ["/v", "Count", "/t", "REG_DWORD", "/d", "0x2a"],
            ["/v", "Wide", "/d", "gr\u00fc\u00dfe \u4e16\u754c"],
            ["/v", "List", "/t", "REG_MULTI_SZ", "/d", "a\\0b"],
            ["/v", "Raw", "/t", "REG_BINARY", "/d", "00ff7f80"],
            ["/v", "Huge", "/t", "REG_QWORD", "/d", "18446744073709551615"],
        ]
        for extra in adds:
            run(quiltool, "reg", "add", linux_key + "\\Developer", *extra, "/f")
        from_linux = os.path.join(work, "from-linux.reg")
        run(quiltool, "reg", "export", linux_key, from_linux)
        run(wine, "regedit", "/S", from_linux)
        wine_copy = os.path.join(work, "wine-copy.reg")
        run(wine, "regedit", "/E", wine_copy, linux_key)
        problems += compare(parse_reg(from_linux), parse_reg(wine_copy), "Linux -> Wine")
        query = run(wine, "reg", "query", linux_key + "\\Developer").decode("latin-1")
        for line in ("ShowStringIDs    REG_SZ    yesplease", "Count    REG_DWORD    0x2a"):
            if line not in query:
                problems.append("wine reg query lacks %r:\n%s" % (line, query))
    except (RuntimeError, ValueError, subprocess.TimeoutExpired) as e:
        problems.append(str(e))
    finally:
        try:
            run(wine, "reg", "delete", "HKEY_CURRENT_USER\\Software\\" + unique, "/f")
        except (RuntimeError, subprocess.TimeoutExpired):
            pass
        if private_prefix:
            subprocess.run(["wineserver", "-k"], env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        shutil.rmtree(work, ignore_errors=True)

    for p in problems:
        print(p)
    print("round trip %s" % ("FAILED" if problems else "passed"))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
