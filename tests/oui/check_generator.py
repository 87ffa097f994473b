#!/usr/bin/env python3
"""check_generator.py GENERATOR INCLUDE_DIR: runs the vendor table generator
on a made-up listing, compiles what it wrote with the host's C++ compiler
and compares the table's bytes with the records the listing must give;
also checks that one listing gives one output and that a missing listing
names the package to install."""
import os
import struct
import subprocess
import sys
import tempfile

gen, include_dir = sys.argv[1], sys.argv[2]
failures = []


def check(ok, what):
    if not ok:
        failures.append(what)
        print("FAIL:", what)


def row(oui_text, name):
    compact = oui_text.replace("-", "")
    return (b"%s   (hex)\t\t%s\r\n%s     (base 16)\t\t%s\r\n\t\t\t\tSomewhere\r\n\t\t\t\tUS\r\n\r\n"
            % (oui_text.encode(), name, compact.encode(), name))


long_ascii = b"L" * 120
split_utf8 = b"S" * 98 + "\u00e9".encode() + b"tail"  # the cut would fall inside the e-acute
exact_99 = b"E" * 99
listing = (b"OUI/MA-L                     Organization\r\n"
           b"company_id                   Organization\r\n\r\n"
           + row("FC-FF-AA", b"IEEE REGISTRATION AUTHORITY  - Last")
           + row("08-00-30", b"FIRST OF THREE")
           + row("00-00-00", b"XEROX CORPORATION")
           + row("08-00-30", b"SECOND OF THREE")
           + row("0a-0b-0c", b'Quote " back \\ trigraph ??= done')
           + row("00-22-72", "M\u00fcller \u00c41234".encode() + b"  ")  # bytes kept, trailing blanks too
           + row("08-00-30", b"THIRD OF THREE")
           + row("00-00-01", long_ascii)
           + row("00-00-02", split_utf8)
           + row("00-00-03", exact_99))

expected = [
    (0xFFFFFF, b"DUMMY"),
    (0x000000, b"XEROX CORPORATION"),
    (0x000001, b"L" * 99),
    (0x000002, b"S" * 98),
    (0x000003, exact_99),
    (0x002272, "M\u00fcller \u00c41234".encode() + b"  "),
    (0x080030, b"FIRST OF THREE"),
    (0x080030, b"SECOND OF THREE"),
    (0x080030, b"THIRD OF THREE"),
    (0x0A0B0C, b'Quote " back \\ trigraph ??= done'),
    (0xFCFFAA, b"IEEE REGISTRATION AUTHORITY  - Last"),
]
want = b"".join(struct.pack("=I100s", oui, name) for oui, name in expected)

dump_main = r"""
#include <stdio.h>
#include "vesk_mac.h"
#include "vesk_oui_list.hpp"
int main() { return fwrite(vesk_oui_list, sizeof *vesk_oui_list, vesk::kOuiRecords, stdout) == vesk::kOuiRecords ? 0 : 1; }
"""

with tempfile.TemporaryDirectory() as tmp:
    src = os.path.join(tmp, "oui.txt")
    with open(src, "wb") as f:
        f.write(listing)
    outs = []
    for n in (1, 2):
        out = os.path.join(tmp, "out%d" % n)
        subprocess.run([sys.executable, gen, src, out], check=True)
        outs.append(out)
    for name in ("vesk_oui_list.cpp", "vesk_oui_list.hpp"):
        with open(os.path.join(outs[0], name), "rb") as a, open(os.path.join(outs[1], name), "rb") as b:
            check(a.read() == b.read(), "same listing, same " + name)

    main_src = os.path.join(tmp, "dump.cpp")
    with open(main_src, "w") as f:
        f.write(dump_main)
    exe = os.path.join(tmp, "dump")
    cxx = os.environ.get("CXX", "c++")
    subprocess.run([cxx, "-std=c++20", "-Wall", "-Werror", "-I", include_dir, "-I", outs[0], main_src,
                    os.path.join(outs[0], "vesk_oui_list.cpp"), "-o", exe], check=True)
    got = subprocess.run([exe], check=True, stdout=subprocess.PIPE).stdout
    check(len(got) == len(want), "record count %d, want %d" % (len(got) // 104, len(want) // 104))
    for i in range(min(len(got), len(want)) // 104):
        check(got[i * 104:(i + 1) * 104] == want[i * 104:(i + 1) * 104], "record %d: %r" % (i, expected[i]))

    missing = subprocess.run([sys.executable, gen, os.path.join(tmp, "none.txt"), os.path.join(tmp, "out3")],
                             stderr=subprocess.PIPE)
    check(missing.returncode != 0 and b"ieee-data" in missing.stderr, "a missing listing names ieee-data")
    check(not os.path.exists(os.path.join(tmp, "out3", "vesk_oui_list.cpp")), "nothing written without a listing")

    empty = os.path.join(tmp, "empty.txt")
    with open(empty, "wb") as f:
        f.write(b"OUI/MA-L  Organization\r\n")
    norows = subprocess.run([sys.executable, gen, empty, os.path.join(tmp, "out4")], stderr=subprocess.PIPE)
    check(norows.returncode != 0 and b"no OUI rows" in norows.stderr, "a listing without rows fails")

print("generator: %d failed" % len(failures))
sys.exit(1 if failures else 0)
