#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks a bill of materials: every field that SPDX 2.3 requires is there and has its form, every reference
leads somewhere, and the sums are those of the tarball."""
import hashlib
import json
import re
import sys
import tarfile

ID = re.compile(r"SPDXRef-[A-Za-z0-9.-]+")
DIGITS = {"SHA1": 40, "SHA256": 64}
LICENCES = {"GPL-3.0-or-later WITH GCC-exception-3.1", "LGPL-2.1-only WITH Qwt-exception-1.0", "MIT", "Apache-2.0", "BSD-2-Clause", "BSD-3-Clause", "BSL-1.0", "ISC", "Zlib", "NOASSERTION", "NONE"} | {
    f"{name}-{end}" for name in ("GPL-2.0", "GPL-3.0", "LGPL-2.1", "LGPL-3.0") for end in ("only", "or-later")}
RELATIONS = {"DESCRIBES", "CONTAINS", "DEPENDS_ON", "BUILD_DEPENDENCY_OF", "GENERATED_FROM"}

path, tarball, *expected = sys.argv[1:]
bill = json.load(open(path, encoding="utf-8"))
faults = []


def check(condition, text):
    if not condition:
        faults.append(text)


def has(thing, what, *fields):
    for field in fields:
        check(thing.get(field) not in (None, ""), f"{what} has no {field}")


def check_sums(thing, what, *wanted):
    found = {entry["algorithm"]: entry["checksumValue"] for entry in thing.get("checksums", [])}
    for kind in wanted:
        check(re.fullmatch("[0-9a-f]{%d}" % DIGITS[kind], found.get(kind, "")), f"{what} has no {kind}")
    return found


def check_licence(words, what, own):
    for word in re.split(r" OR | AND ", words):
        check(word in LICENCES or word in own, f"{what}: '{word}' is no licence of the format and has no text")


has(bill, "the document", "spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo")
check(bill["spdxVersion"] == "SPDX-2.3", "not of version 2.3")
check(bill["dataLicense"] == "CC0-1.0", "the data licence is another than CC0-1.0")
check(bill["SPDXID"] == "SPDXRef-DOCUMENT", "the document has another id")
check(re.fullmatch(r"https?://[^#\s]+", bill["documentNamespace"]), "the name space is no address")
check(re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", bill["creationInfo"]["created"]), "created is no time in UTC")
for creator in bill["creationInfo"]["creators"]:
    check(re.match(r"(Person|Organization|Tool): \S", creator), f"{creator} is no creator")

own_texts = {entry["licenseId"] for entry in bill["hasExtractedLicensingInfos"]}
for entry in bill["hasExtractedLicensingInfos"]:
    has(entry, "a licence", "licenseId", "extractedText")
    check(re.fullmatch(r"LicenseRef-[A-Za-z0-9.-]+", entry["licenseId"]), f"{entry['licenseId']} is no reference")

for package in bill["packages"]:
    what = "package " + package.get("name", "?")
    has(package, what, "SPDXID", "name", "downloadLocation", "licenseDeclared", "licenseConcluded", "copyrightText")
    check_licence(package["licenseDeclared"], what, own_texts)
    if package["filesAnalyzed"]:
        sums = sorted(file["checksums"][0]["checksumValue"] for file in bill["files"])
        code = hashlib.sha1("".join(sums).encode()).hexdigest()
        check(package["packageVerificationCode"]["packageVerificationCodeValue"] == code, f"{what}: wrong code")
    if "packageFileName" in package:
        check_sums(package, what, "SHA256")

with tarfile.open(tarball) as archive:
    members = {"./" + m.name.split("/", 1)[1]: archive.extractfile(m).read() for m in archive if m.isfile()}
check(len(members) > 5, "the tarball is next to empty")
check({file["fileName"] for file in bill["files"]} == set(members), "other files than in the tarball")
for file in bill["files"]:
    found = check_sums(file, file["fileName"], "SHA1", "SHA256")
    check_licence(file["licenseConcluded"], file["fileName"], own_texts)
    has(file, file["fileName"], "SPDXID", "copyrightText")
    check(found["SHA256"] == hashlib.sha256(members.get(file["fileName"], b"")).hexdigest(),
          f"{file['fileName']} has another sum")
own = next(package for package in bill["packages"] if package["name"] == "korvane_dx4")
check(check_sums(own, "the source", "SHA256")["SHA256"] == hashlib.sha256(open(tarball, "rb").read()).hexdigest(),
      "the tarball has another sum")

things = [bill["SPDXID"]] + [thing["SPDXID"] for thing in bill["packages"] + bill["files"]]
check(len(things) == len(set(things)), "an id stands for two things")
for thing in things:
    check(ID.fullmatch(thing), f"{thing} is no id")
for entry in bill["relationships"]:
    check(entry["relationshipType"] in RELATIONS, f"{entry['relationshipType']} is not used here")
    check(entry["spdxElementId"] in things and entry["relatedSpdxElement"] in things, f"{entry} leads nowhere")
for name in expected:
    found = [package for package in bill["packages"] if package["name"] == name]
    check(found and found[0].get("versionInfo"), f"{name} is not there with a version")

print("\n".join(faults[:20]), file=sys.stderr)
sys.exit(1 if faults else 0)
