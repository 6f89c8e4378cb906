#!/usr/bin/python3
"""The third-party components of the release, as listed in cmake/ThirdParty.txt, with the
version and the copyright file of the Debian package each one comes from on this machine.

  third_party.py notices LIST OUT PRODUCT_VERSION   writes THIRD-PARTY-NOTICES.txt

scripts/package.py imports it for the SBOM.
"""
import os
import subprocess
import sys


def components(list_path):
    """[{package, name, license, description, version, architecture, copyright}] in the
    list's order; fails when a listed package is not installed."""
    found = []
    with open(list_path, encoding="utf-8") as f:
        for line in f:
            line = line.strip()
            if not line or line.startswith("#"):
                continue
            package, name, license_id, description = (field.strip() for field in line.split("|", 3))
            query = subprocess.run(["dpkg-query", "-W", "-f=${Version}|${Architecture}", package],
                                   capture_output=True, text=True)
            if query.returncode != 0:
                raise SystemExit("third party: Debian package %s is not installed: %s" % (package, query.stderr))
            version, architecture = query.stdout.split("|")
            copyright_path = "/usr/share/doc/%s/copyright" % package
            if not os.path.isfile(copyright_path):
                raise SystemExit("third party: %s has no copyright file" % package)
            found.append({"package": package, "name": name, "license": license_id, "description": description,
                          "version": version, "architecture": architecture, "copyright": copyright_path})
    return found


def notices(found, product_version):
    """The text of THIRD-PARTY-NOTICES.txt: a list of the components, then each distinct
    copyright text once, whole (packages of one Debian source share theirs)."""
    lines = ["Lumaven %s: third-party notices" % product_version, "",
             "The binaries of this package contain the components below, each taken from the Debian",
             "package named with it, at the version the release was built with. The full copyright",
             "and license text of each follows, as its Debian package states it.", ""]
    texts = []  # (copyright text, [component numbers])
    for number, component in enumerate(found, 1):
        with open(component["copyright"], encoding="utf-8", errors="replace") as f:
            text = f.read().rstrip("\n")
        shared = next((entry for entry in texts if entry[0] == text), None)
        if shared is None:
            shared = (text, [])
            texts.append(shared)
        shared[1].append(number)
        lines += ["%d. %s" % (number, component["name"]),
                  "   Debian package: %s %s" % (component["package"], component["version"]),
                  "   License: %s" % component["license"],
                  "   Use: %s" % component["description"],
                  "   Copyright and license text: section %s below" % chr(ord("A") + texts.index(shared)), ""]
    for index, (text, numbers) in enumerate(texts):
        names = ", ".join(found[n - 1]["package"] for n in numbers)
        lines += ["=" * 78, "%s. Copyright and license of %s" % (chr(ord("A") + index), names), "=" * 78, ""]
        lines += text.split("\n")
        lines.append("")
    return "\n".join(lines) + "\n"


def main(argv):
    if len(argv) != 5 or argv[1] != "notices":
        print(__doc__, file=sys.stderr)
        return 2
    text = notices(components(argv[2]), argv[4])
    with open(argv[3], "w", encoding="utf-8", newline="\n") as f:
        f.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
