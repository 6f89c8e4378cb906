#!/usr/bin/python3
"""Checks the SBOM inside a release zip: an SPDX 2.3 JSON document with the fields a reader
needs, describing the product at VERSION, listing every other file of the zip with the
SHA-256 of the bytes in the zip (and no file that is not there), and naming each
third-party component with a version, a license and a package URL.

usage: sbom-check.py ZIP VERSION
"""
import hashlib
import json
import re
import sys
import zipfile

problems = []


def expect(condition, message):
    if not condition:
        problems.append(message)
    return condition


def check_document(document, version):
    for field in ("spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo", "packages",
                  "files", "relationships", "documentDescribes"):
        expect(field in document, "no %s" % field)
    expect(document.get("spdxVersion") == "SPDX-2.3", "spdxVersion is %r" % document.get("spdxVersion"))
    expect(document.get("dataLicense") == "CC0-1.0", "dataLicense is %r" % document.get("dataLicense"))
    expect(document.get("SPDXID") == "SPDXRef-DOCUMENT", "the document's SPDXID is %r" % document.get("SPDXID"))
    expect(re.match(r"^[a-z]+:", document.get("documentNamespace", "")), "documentNamespace is no URI")
    creation = document.get("creationInfo", {})
    expect(re.match(r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$", creation.get("created", "")), "creationInfo.created")
    expect(creation.get("creators"), "creationInfo.creators is empty")
    identifiers = [element.get("SPDXID") for element in document.get("packages", []) + document.get("files", [])]
    expect(len(identifiers) == len(set(identifiers)), "an SPDXID is used twice")
    for identifier in identifiers:
        expect(re.match(r"^SPDXRef-[A-Za-z0-9.-]+$", identifier or ""), "bad SPDXID %r" % identifier)
    packages = {p["SPDXID"]: p for p in document.get("packages", [])}
    described = document.get("documentDescribes", [])
    expect(len(described) == 1 and described[0] in packages, "documentDescribes names no package")
    product = packages.get(described[0] if described else None, {})
    expect(product.get("name") == "Lumaven", "the product is %r" % product.get("name"))
    expect(product.get("versionInfo") == version, "the product's version is %r" % product.get("versionInfo"))
    for package in packages.values():
        for field in ("name", "versionInfo", "downloadLocation", "licenseConcluded", "licenseDeclared",
                      "copyrightText"):
            expect(package.get(field), "package %s has no %s" % (package["SPDXID"], field))
    third_party = [p for p in packages.values() if p is not product]
    expect(third_party, "no third-party component")
    for package in third_party:
        refs = [r for r in package.get("externalRefs", []) if r.get("referenceType") == "purl"]
        expect(refs and refs[0]["referenceLocator"].startswith("pkg:deb/"), "%s has no package URL" % package["name"])
        expect(package.get("licenseDeclared") != "NOASSERTION", "%s has no license" % package["name"])
    linked = {r["relatedSpdxElement"] for r in document.get("relationships", [])
              if r.get("spdxElementId") == product.get("SPDXID") and r.get("relationshipType") == "STATIC_LINK"}
    for package in third_party:
        expect(package["SPDXID"] in linked, "no relationship from the product to %s" % package["name"])
    expect(set(product.get("hasFiles", [])) == {f["SPDXID"] for f in document.get("files", [])},
           "the product does not hold exactly the listed files")


def check_files(document, archive, top, sbom_name):
    listed = {}
    for entry in document.get("files", []):
        sums = {c["algorithm"]: c["checksumValue"] for c in entry.get("checksums", [])}
        expect("SHA1" in sums, "%s has no SHA1 (SPDX 2.3 requires one)" % entry.get("fileName"))
        expect(re.match(r"^[0-9a-f]{64}$", sums.get("SHA256", "")), "%s has no SHA-256" % entry.get("fileName"))
        listed[entry.get("fileName")] = sums.get("SHA256")
    in_zip = {}
    for name in archive.namelist():
        if name.endswith("/") or name == top + sbom_name:
            continue
        expect(name.startswith(top), "%s is outside %s" % (name, top))
        in_zip["./" + name[len(top):]] = hashlib.sha256(archive.read(name)).hexdigest()
    for name, sha256 in sorted(in_zip.items()):
        if expect(name in listed, "%s is in the zip but not in the SBOM" % name):
            expect(listed[name] == sha256, "%s: the SBOM's SHA-256 is not the file's" % name)
    for name in sorted(set(listed) - set(in_zip)):
        expect(False, "%s is in the SBOM but not in the zip" % name)
    return len(in_zip)


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    zip_path, version = sys.argv[1:]
    with zipfile.ZipFile(zip_path) as archive:
        top = archive.namelist()[0].split("/")[0] + "/"
        sbom_name = top[:-1] + ".spdx.json"
        if top + sbom_name not in archive.namelist():
            print("sbom check: no %s in the zip" % (top + sbom_name))
            return 1
        document = json.loads(archive.read(top + sbom_name))
        check_document(document, version)
        count = check_files(document, archive, top, sbom_name)
    for problem in problems:
        print("sbom check: " + problem)
    print("sbom check: %s, %d files with SHA-256, %d third-party components, %d problems" % (
        sbom_name, count, len(document.get("packages", [])) - 1, len(problems)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
