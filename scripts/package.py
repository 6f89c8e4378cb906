#!/usr/bin/python3
"""Turns a built tree into the release package, the same bytes for the same commit:

  package.py BUILD_DIR [--out DIR] [--sign CERT KEY]

1. `cmake --install BUILD_DIR` into DIR/stage/<name> (the install tree, with the third-party
   notices), <name> being Lumaven-<version>-win64;
2. with --sign, every PE file signed with Authenticode (osslsigncode, SHA-256; CERT and KEY in
   PEM), so that the SBOM's hashes are those of the signed files;
3. <name>.spdx.json, the SBOM (SPDX 2.3): the product and every file of the package with its
   SHA-256, and each third-party component with its version and license;
4. DIR/<name>.zip, its entries sorted, each dated SOURCE_DATE_EPOCH (from the environment, or
   the source's last commit), and DIR/<name>.zip.sha256 for `sha256sum -c`.

DIR defaults to BUILD_DIR/package.
"""
import argparse
import datetime
import hashlib
import json
import os
import shutil
import subprocess
import sys
import uuid
import zipfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import third_party  # noqa: E402


def is_pe(path):
    with open(path, "rb") as f:
        head = f.read(0x40)
        if len(head) < 0x40 or head[:2] != b"MZ":
            return False
        f.seek(int.from_bytes(head[0x3C:0x40], "little"))
        return f.read(4) == b"PE\0\0"


def files_under(root):
    """Every file under `root`, as sorted paths relative to it with '/' separators."""
    found = []
    for folder, _, names in os.walk(root):
        for name in names:
            found.append(os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/"))
    return sorted(found)


def digest(path, algorithm):
    h = hashlib.new(algorithm)
    with open(path, "rb") as f:
        for block in iter(lambda: f.read(1 << 20), b""):
            h.update(block)
    return h.hexdigest()


def source_date_epoch(source_dir):
    if os.environ.get("SOURCE_DATE_EPOCH"):
        return int(os.environ["SOURCE_DATE_EPOCH"])
    last_commit = subprocess.run(["git", "-C", source_dir, "log", "-1", "--format=%ct"], capture_output=True,
                                 text=True)
    if last_commit.returncode == 0 and last_commit.stdout.strip():
        return int(last_commit.stdout.strip())
    raise SystemExit("package: set SOURCE_DATE_EPOCH (the source is not a git checkout)")


def sign(root, certificate, key, description):
    for relative in files_under(root):
        path = os.path.join(root, relative)
        if not is_pe(path):
            continue
        signed = path + ".signed"
        subprocess.run(["osslsigncode", "sign", "-certs", certificate, "-key", key, "-h", "sha256", "-n", description,
                        "-in", path, "-out", signed], check=True, stdout=subprocess.DEVNULL)
        os.replace(signed, path)
        print("package: signed %s" % relative)


def purl(component):
    version = component["version"].replace("+", "%2B").replace(":", "%3A")
    return "pkg:deb/debian/%s@%s?arch=%s" % (component["package"], version, component["architecture"])


def spdx_id(text):
    return "".join(c if c.isalnum() or c in ".-" else "-" for c in text)


def sbom(root, info, components, epoch):
    """The SPDX 2.3 document of the package rooted at `root` (every file already in place)."""
    files = []
    verification = hashlib.sha1()
    for number, relative in enumerate(files_under(root), 1):
        path = os.path.join(root, relative)
        sha1 = digest(path, "sha1")
        files.append({"fileName": "./" + relative, "SPDXID": "SPDXRef-File-%d" % number,
                      "checksums": [{"algorithm": "SHA1", "checksumValue": sha1},
                                    {"algorithm": "SHA256", "checksumValue": digest(path, "sha256")}],
                      "licenseConcluded": "NOASSERTION", "copyrightText": "NOASSERTION"})
    for sha1 in sorted(f["checksums"][0]["checksumValue"] for f in files):
        verification.update(sha1.encode())
    name = info["package"]
    product = {"SPDXID": "SPDXRef-Package-Lumaven", "name": info["name"], "versionInfo": info["version"],
               "supplier": "Organization: " + info["vendor"], "downloadLocation": "NOASSERTION",
               "filesAnalyzed": True, "packageVerificationCode": {"packageVerificationCodeValue": verification.hexdigest()},
               "licenseConcluded": "NOASSERTION", "licenseDeclared": "NOASSERTION", "copyrightText": "NOASSERTION",
               "primaryPackagePurpose": "LIBRARY", "hasFiles": [f["SPDXID"] for f in files],
               "comment": "Built with %s for %s" % (info["compiler"], info["system"])}
    packages = [product]
    relationships = [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
                      "relatedSpdxElement": product["SPDXID"]}]
    for component in components:
        identifier = "SPDXRef-Package-deb-" + spdx_id(component["package"])
        packages.append({"SPDXID": identifier, "name": component["name"], "versionInfo": component["version"],
                         "supplier": "Organization: Debian", "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
                         "licenseConcluded": component["license"], "licenseDeclared": component["license"],
                         "copyrightText": "NOASSERTION", "description": component["description"],
                         "externalRefs": [{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                                           "referenceLocator": purl(component)}]})
        relationships.append({"spdxElementId": product["SPDXID"], "relationshipType": "STATIC_LINK",
                              "relatedSpdxElement": identifier})
    hashes = hashlib.sha256("".join(f["checksums"][1]["checksumValue"] for f in files).encode()).hexdigest()
    created = datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    return {"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": name,
            "documentNamespace": "urn:uuid:%s" % uuid.uuid5(uuid.NAMESPACE_URL, name + "/" + hashes),
            "creationInfo": {"created": created, "creators": ["Tool: lumaven-package.py", "Organization: " +
                                                              info["vendor"]]},
            "documentDescribes": [product["SPDXID"]], "packages": packages, "files": files,
            "relationships": relationships}


def write_zip(stage, name, zip_path, epoch):
    date = datetime.datetime.fromtimestamp(max(epoch, 315532800), datetime.timezone.utc).timetuple()[:6]
    with zipfile.ZipFile(zip_path, "w") as archive:
        for relative in files_under(os.path.join(stage, name)):
            entry = zipfile.ZipInfo(name + "/" + relative, date_time=date)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3  # Unix, so that the permissions below are read
            entry.external_attr = 0o100644 << 16
            with open(os.path.join(stage, name, relative), "rb") as f:
                archive.writestr(entry, f.read(), compresslevel=9)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("build_dir")
    parser.add_argument("--out")
    parser.add_argument("--sign", nargs=2, metavar=("CERT", "KEY"))
    args = parser.parse_args()
    build = os.path.abspath(args.build_dir)
    out = os.path.abspath(args.out or os.path.join(build, "package"))
    with open(os.path.join(build, "package-info.json"), encoding="utf-8") as f:
        info = json.load(f)
    name = info["package"]
    stage = os.path.join(out, "stage")
    root = os.path.join(stage, name)
    shutil.rmtree(stage, ignore_errors=True)
    os.makedirs(out, exist_ok=True)
    with open(os.path.join(out, "install.log"), "w") as log:
        subprocess.run(["cmake", "--install", build, "--prefix", root], check=True, stdout=log)
    if args.sign:
        sign(root, os.path.abspath(args.sign[0]), os.path.abspath(args.sign[1]), "%s %s" % (info["name"],
                                                                                            info["version"]))
    epoch = source_date_epoch(info["source_dir"])
    document = sbom(root, info, third_party.components(info["third_party"]), epoch)
    with open(os.path.join(root, name + ".spdx.json"), "w", encoding="utf-8", newline="\n") as f:
        json.dump(document, f, indent=1, sort_keys=True)
        f.write("\n")
    zip_path = os.path.join(out, name + ".zip")
    write_zip(stage, name, zip_path, epoch)
    with open(zip_path + ".sha256", "w", encoding="utf-8", newline="\n") as f:
        f.write("%s  %s\n" % (digest(zip_path, "sha256"), name + ".zip"))
    print("package: %s (%d bytes, %d files, SOURCE_DATE_EPOCH=%d)" % (zip_path, os.path.getsize(zip_path),
                                                                      len(document["files"]) + 1, epoch))
    return 0


if __name__ == "__main__":
    sys.exit(main())
