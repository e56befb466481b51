#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes the bill of materials of a release: SPDX 2.3 as JSON, on standard output.

It lists every file of the source tarball with its sums, every Debian package that was made, and the packages
of Debian which these and the build depend upon, with version and licence as dpkg knows them on this machine.
The same input gives the same bytes.
"""
import argparse
import datetime
import hashlib
import json
import pathlib
import re
import subprocess
import tarfile

# Licences as debian/copyright files name them. What is not here becomes a LicenseRef with its text.
LICENCES = {
    "Apache-2.0": "Apache-2.0",
    "BSD-2-clause": "BSD-2-Clause",
    "BSD-3-Clause": "BSD-3-Clause",
    "BSD-3-clause": "BSD-3-Clause",
    "BSL-1.0": "BSL-1.0",
    "Boost-1.0": "BSL-1.0",
    "Expat": "MIT",
    "ISC": "ISC",
    "MIT": "MIT",
    "GPL-2": "GPL-2.0-only",
    "GPL-2+": "GPL-2.0-or-later",
    "GPL-3": "GPL-3.0-only",
    "GPL-3+": "GPL-3.0-or-later",
    "LGPL-2.1": "LGPL-2.1-only",
    "LGPL-2.1+": "LGPL-2.1-or-later",
    "LGPL-3": "LGPL-3.0-only",
    "LGPL-3+": "LGPL-3.0-or-later",
    "Zlib": "Zlib",
    "zlib": "Zlib",
}
# Packages whose debian/copyright is prose, and says this.
PROSE = {
    "libc6": "LGPL-2.1-or-later",
    "libgcc-s1": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "libqwt-qt5-6": "LGPL-2.1-only WITH Qwt-exception-1.0",
    "libqwt-qt5-dev": "LGPL-2.1-only WITH Qwt-exception-1.0",
    "libstdc++6": "GPL-3.0-or-later WITH GCC-exception-3.1",
}
# Names that stand for another package.
STANDS_FOR = {"debhelper-compat": "debhelper"}
OWN = "SPDXRef-Package-korvane-dx4"
OWN_COPYRIGHT = "Copyright 2026 The korvane_dx4 authors"


def identifier(kind, name):
    return f"SPDXRef-{kind}-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def sums(data, *kinds):
    return [{"algorithm": kind, "checksumValue": hashlib.new(kind.lower(), data).hexdigest()} for kind in kinds]


def source_files(tarball):
    """Every file of the tarball, in the order of their names."""
    files = []
    with tarfile.open(tarball) as archive:
        for number, member in enumerate(sorted((m for m in archive if m.isfile()), key=lambda m: m.name), 1):
            data = archive.extractfile(member).read()
            files.append({
                "SPDXID": f"SPDXRef-File-{number}",
                "fileName": "./" + member.name.split("/", 1)[1],
                "checksums": sums(data, "SHA1", "SHA256"),
                "licenseConcluded": "MIT",
                "copyrightText": OWN_COPYRIGHT,
            })
    return files


def verification_code(files):
    """The sum over the sums of all files, as the format defines it."""
    lines = sorted(file["checksums"][0]["checksumValue"] for file in files)
    return hashlib.sha1("".join(lines).encode()).hexdigest()


def field_of(package, name):
    """A field of an installed package, or nothing."""
    said = subprocess.run(["dpkg-query", "--show", "--showformat", "${%s}\n" % name, package],
                          capture_output=True, text=True, check=False)
    lines = said.stdout.splitlines()
    return lines[0] if said.returncode == 0 and lines else ""


def alternatives(text):
    """The package names of a Depends field; of alternatives the first that is installed."""
    text = re.sub(r"\$\{[^}]*\}", "", text)
    for group in filter(None, (part.strip() for part in text.split(","))):
        names = [re.match(r"[a-z0-9][a-z0-9+.-]*", choice.strip()) for choice in group.split("|")]
        names = [STANDS_FOR.get(name.group(), name.group()) for name in names if name]
        if names:
            yield next((name for name in names if field_of(name, "Version")), names[0])


class LicenceBook:
    """Licences of packages, and the texts of those that have no name in the format."""

    def __init__(self):
        self.texts = {}

    def of(self, package):
        if package in PROSE:
            return PROSE[package]
        path = pathlib.Path("/usr/share/doc", package, "copyright")
        if not path.is_file():
            return "NOASSERTION"
        text = path.read_text(encoding="utf-8", errors="replace")
        found = re.search(r"^Files:\s*\*\s*$.*?^License:[ \t]*(\S[^\n]*)$", text, re.MULTILINE | re.DOTALL)
        if not text.startswith("Format:") or not found:
            return "NOASSERTION"
        return self.expression(found.group(1).strip(), text)

    def expression(self, words, text):
        """"LGPL-3 or GPL-2" as the format writes it."""
        parts = re.split(r"\s*,?\s+(or|and)\s+", words)
        known = [LICENCES.get(part) or self.reference(part, text) for part in parts[::2]]
        joined = known[0]
        for word, name in zip(parts[1::2], known[1:]):
            joined += f" {word.upper()} {name}"
        return joined

    def reference(self, name, text):
        reference = "LicenseRef-" + re.sub(r"[^A-Za-z0-9.-]+", "-", name).strip("-")
        found = re.search(r"^License:[ \t]*" + re.escape(name) + r"[ \t]*\n((?:[ \t].*\n)+)", text + "\n", re.MULTILINE)
        self.texts.setdefault(reference, (name, found.group(1) if found else text))
        return reference

    def extracted(self):
        return [{"licenseId": reference, "name": name, "extractedText": text}
                for reference, (name, text) in sorted(self.texts.items())]


def debian_package(package, book):
    version = field_of(package, "Version")
    entry = {
        "SPDXID": identifier("Debian", package),
        "name": package,
        "supplier": "Organization: Debian",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": "NOASSERTION",
        "licenseDeclared": book.of(package),
        "copyrightText": "NOASSERTION",
    }
    if version:
        entry["versionInfo"] = version
        entry["externalRefs"] = [{
            "referenceCategory": "PACKAGE-MANAGER",
            "referenceType": "purl",
            "referenceLocator": f"pkg:deb/debian/{package}@{version.replace('+', '%2B').replace(':', '%3A')}",
        }]
    return entry


def own_package(version, tarball, files):
    return {
        "SPDXID": OWN,
        "name": "korvane_dx4",
        "versionInfo": version,
        "packageFileName": tarball.name,
        "supplier": "Organization: The korvane_dx4 authors",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": True,
        "packageVerificationCode": {"packageVerificationCodeValue": verification_code(files)},
        "checksums": sums(tarball.read_bytes(), "SHA1", "SHA256"),
        "licenseConcluded": "MIT",
        "licenseDeclared": "MIT",
        "licenseInfoFromFiles": ["MIT"],
        "copyrightText": OWN_COPYRIGHT,
    }


def made_package(path, version):
    """A Debian package of this release, and the names it depends upon."""
    def said(name):
        return subprocess.run(["dpkg-deb", "-f", path, name], capture_output=True, text=True, check=True).stdout.strip()
    entry = {
        "SPDXID": identifier("Made", said("Package")),
        "name": said("Package"),
        "versionInfo": version,
        "packageFileName": path.name,
        "supplier": "Organization: The korvane_dx4 authors",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "checksums": sums(path.read_bytes(), "SHA1", "SHA256"),
        "licenseConcluded": "MIT",
        "licenseDeclared": "MIT",
        "copyrightText": OWN_COPYRIGHT,
    }
    return entry, list(alternatives(", ".join(filter(None, [said("Depends"), said("Pre-Depends")]))))


def build_depends(control):
    text = pathlib.Path(control).read_text(encoding="utf-8")
    return list(alternatives(re.search(r"^Build-Depends:\n((?: .*\n)+)", text, re.MULTILINE).group(1)))


def relation(one, kind, other):
    return {"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}


def document(arguments):
    tarball = pathlib.Path(arguments.tarball)
    files = source_files(tarball)
    book = LicenceBook()
    packages = [own_package(arguments.version, tarball, files)]
    relations = [relation("SPDXRef-DOCUMENT", "DESCRIBES", OWN)]
    relations += [relation(OWN, "CONTAINS", file["SPDXID"]) for file in files]
    needed = {}
    made = {}
    for path in map(pathlib.Path, sorted(arguments.packages)):
        entry, names = made_package(path, arguments.version)
        packages.append(entry)
        made[entry["name"]] = entry["SPDXID"]
        needed[entry["SPDXID"]] = names
        relations.append(relation(entry["SPDXID"], "GENERATED_FROM", OWN))
    tools = build_depends(arguments.control)
    outside = sorted({name for names in needed.values() for name in names if name not in made} | set(tools))
    packages += [debian_package(name, book) for name in outside]
    for own, names in needed.items():
        relations += [relation(own, "DEPENDS_ON", made.get(name) or identifier("Debian", name)) for name in sorted(set(names))]
    relations += [relation(identifier("Debian", name), "BUILD_DEPENDENCY_OF", OWN) for name in sorted(set(tools))]
    created = datetime.datetime.fromtimestamp(arguments.created, datetime.timezone.utc)
    digest = packages[0]["checksums"][1]["checksumValue"][:16]
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"korvane_dx4-{arguments.version}",
        "documentNamespace": f"https://korvane-dx4.packages.invalid/spdx/{arguments.version}-{digest}",
        "creationInfo": {
            "created": created.strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": ["Organization: The korvane_dx4 authors", "Tool: korvane_dx4-sbom"],
        },
        "packages": packages,
        "files": files,
        "hasExtractedLicensingInfos": book.extracted(),
        "relationships": relations,
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--version", required=True, help="version of the release")
    parser.add_argument("--created", required=True, type=int, help="time of the document, in seconds since 1970")
    parser.add_argument("--control", required=True, help="debian/control, for what the build needs")
    parser.add_argument("tarball", help="the source tarball")
    parser.add_argument("packages", nargs="*", help="the Debian packages that were made")
    print(json.dumps(document(parser.parse_args()), indent=1, ensure_ascii=False))


if __name__ == "__main__":
    main()
