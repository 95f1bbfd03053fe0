#!/usr/bin/env python3
"""Writes what the packages are made of, from packaging/components.tsv.

sbom.py write FOLDER VERSION   the SPDX 2.3 document of the archives in FOLDER, to FOLDER/VLOnlineIDs-VERSION.spdx.json
sbom.py notices FOLDER         licence and terms of every component, to FOLDER/licences/
sbom.py check DOCUMENT         exit status 0 only if it is a whole SPDX document that fits the archives beside it

Times are SOURCE_DATE_EPOCH's, so that two runs are equal.
"""
import datetime
import hashlib
import json
import os
import re
import subprocess
import sys
import tarfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def components():
    for line in (ROOT / "packaging/components.tsv").read_text(encoding="utf-8").splitlines():
        if not line.startswith("#"):
            name, source, licence, *terms = line.split("\t")
            release = source if source[0].isdigit() else subprocess.run(
                ["dpkg-query", "-W", "-f", "${Version}", source], check=True, text=True, stdout=subprocess.PIPE).stdout
            yield name, source, release, licence, terms[0] if terms else None


def notices(folder):
    out = folder / "licences"
    out.mkdir(parents=True, exist_ok=True)
    for name, source, _, _, terms in components():
        if terms:
            archive, member = terms.split(":")
            with tarfile.open(ROOT / "build/third-party" / archive) as tar:
                found = next(entry for entry in tar if entry.name.split("/", 1)[-1] == member)
                text = tar.extractfile(found).read()
        else:
            text = Path("/usr/share/doc", source, "copyright").read_bytes()
        (out / f"{name.replace(' ', '-')}.txt").write_bytes(text)


def sha256(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def shipped(folder):
    return sorted(path for path in folder.iterdir()
                  if path.is_file() and path.suffix in {".zip", ".exe", ".msi", ".xz"})


def package(name, version, licence):
    return {"SPDXID": "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", name), "name": name, "versionInfo": version,
            "downloadLocation": "NOASSERTION", "filesAnalyzed": False, "licenseConcluded": licence,
            "licenseDeclared": licence, "copyrightText": "NOASSERTION"}


def write(folder, version):
    product = package("VLOnlineIDs", version, "MIT")
    parts = [package(name, release, licence) for name, _, release, licence, _ in components()]
    files = [{"SPDXID": f"SPDXRef-File-{path.name}", "fileName": f"./{path.name}",
              "checksums": [{"algorithm": "SHA256", "checksumValue": sha256(path)}],
              "licenseConcluded": "NOASSERTION", "copyrightText": "NOASSERTION"} for path in shipped(folder)]
    made = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), datetime.timezone.utc)
    relations = [("SPDXRef-DOCUMENT", "DESCRIBES", product["SPDXID"])]
    relations += [(product["SPDXID"], "CONTAINS", part["SPDXID"]) for part in parts]
    relations += [(file["SPDXID"], "GENERATED_FROM", product["SPDXID"]) for file in files]
    identity = hashlib.sha256("".join(file["checksums"][0]["checksumValue"] for file in files).encode()).hexdigest()
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"VLOnlineIDs-{version}", "documentNamespace": f"urn:vlonlineids:{version}:{identity}",
        "creationInfo": {"created": made.strftime("%Y-%m-%dT%H:%M:%SZ"), "creators": ["Tool: sbom.py"]},
        "packages": [product, *parts], "files": files,
        "relationships": [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
                          for one, kind, other in relations]}
    (folder / f"VLOnlineIDs-{version}.spdx.json").write_text(json.dumps(document, indent=2) + "\n", encoding="utf-8")


def problems(document, folder):
    """The rules of SPDX 2.3 for what such a document must have, and the checksums."""
    if (document["spdxVersion"], document["dataLicense"], document["SPDXID"]) != ("SPDX-2.3", "CC0-1.0",
                                                                               "SPDXRef-DOCUMENT"):
        yield "the head is not that of an SPDX 2.3 document"
    if not re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", document["creationInfo"]["created"]):
        yield "the time of creation is no SPDX time"
    if not re.fullmatch(r"[a-z][a-z0-9+.-]*:[^#]+", document["documentNamespace"]):
        yield "the namespace is no URI without a fragment"
    elements = document["packages"] + document["files"]
    ids = [element["SPDXID"] for element in elements] + ["SPDXRef-DOCUMENT"]
    if len(set(ids)) != len(ids) or not all(re.fullmatch(r"SPDXRef-[A-Za-z0-9.-]+", one) for one in ids):
        yield "the identifiers are not well-formed, or one is there twice"
    for one in document["packages"]:
        missing = {"name", "versionInfo", "downloadLocation", "licenseConcluded"} - {key for key, value in one.items() if value}
        if missing:
            yield f"{one['SPDXID']} lacks {', '.join(sorted(missing))}"
    related = {id for one in document["relationships"] for id in (one["spdxElementId"], one["relatedSpdxElement"])}
    if related != set(ids):
        yield f"related, but not listed, or the other way round: {', '.join(sorted(related ^ set(ids)))}"
    listed = {one["fileName"].removeprefix("./"): one["checksums"][0]["checksumValue"] for one in document["files"]}
    if listed != {path.name: sha256(path) for path in shipped(folder)}:
        yield "the files or their checksums are not those of the folder"


def main(arguments):
    match arguments:
        case ["write", folder, version]:
            write(Path(folder), version)
        case ["notices", folder]:
            notices(Path(folder))
        case ["check", document]:
            found = list(problems(json.loads(Path(document).read_text(encoding="utf-8")), Path(document).parent))
            print("\n".join(f"sbom: {line}" for line in found) or f"sbom: {Path(document).name} is valid")
            return 1 if found else 0
        case _:
            sys.exit(__doc__)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
