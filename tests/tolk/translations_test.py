"""Checks the translations: translations_test.py ROOT LUPDATE CATALOGUE=SOURCE,SOURCE...

Collects the texts of each catalogue afresh and compares: every text has a finished translation,
placeholders and access keys agree, and no translation is left of a text that has gone.
"""
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml
from pathlib import Path

PLACEHOLDER = re.compile(r"%(?:L?\d+|n|[-+ #0]*\d*(?:\.\d+)?(?:l{1,2}|z)?[diufgsxc%])")
ACCESS_KEY = re.compile(r"&(?=[^&\s])")


def read_texts(ts):
    """{(context, source, comment): [translations]}, and the keys that have plural forms.

    A text without a finished translation has []."""
    texts, plurals = {}, set()
    for context in xml.parse(ts).getroot().iter("context"):
        for message in context.iter("message"):
            key = (context.findtext("name"), message.findtext("source"),
                   message.findtext("comment") or "")
            translation = message.find("translation")
            forms = [form.text or "" for form in translation.iter("numerusform")]
            forms = forms or [translation.text or ""]
            is_done = "type" not in translation.attrib and all(forms)
            texts[key] = forms if is_done else []
            if message.get("numerus") == "yes": plurals.add(key)
    return texts, plurals


def access_keys(text):
    return len(ACCESS_KEY.findall(text.replace("&&", "")))


def faults_of(texts, current):
    """What is wrong with the translations in texts, given the texts that the sources hold."""
    faults = []
    for key in current:
        source, forms = key[1], texts.get(key, [])
        if not forms: faults.append(f"{source!r} has no finished translation")
        for form in forms:
            if "%n" not in source and (
                    sorted(PLACEHOLDER.findall(source)) != sorted(PLACEHOLDER.findall(form))):
                faults.append(f"{source!r} and {form!r} have different placeholders")
            if access_keys(source) != access_keys(form):
                faults.append(f"{source!r} and {form!r} differ in access keys")
    faults += [f"{key[1]!r} is no longer in the sources" for key in texts if key not in current]
    return faults


def current_texts(root, lupdate, sources):
    with tempfile.TemporaryDirectory() as folder:
        ts = Path(folder) / "current.ts"
        subprocess.run([lupdate, "-silent", "-locations", "none", "-I", ".", "-extensions", "h,cpp,inc,ui",
                        *sources, "-ts", str(ts)], cwd=root, check=True)
        return read_texts(ts)


def seeded_faults_are_seen():
    def found(source, forms):
        return faults_of({("c", source, ""): forms}, {("c", source, ""): []})

    assert found("&Open %1 %d", ["%d &Öffnen %1"]) == [] and found("A && b", ["A && B"]) == []
    assert len(found("Open", [])) == 1
    assert len(found("Layer %d", ["Ebene"])) == 1
    assert len(found("%s of %1", ["%1 von %d"])) == 1
    assert len(found("&Open", ["Öffnen"])) == 1
    assert len(faults_of({("c", "Gone", ""): ["Weg"]}, {})) == 1


def main(root, lupdate, *catalogues):
    seeded_faults_are_seen()
    faults = []
    for catalogue in catalogues:
        name, _, sources = catalogue.partition("=")
        current, plurals = current_texts(root, lupdate, sources.split(","))
        if not current: faults.append(f"{name}: lupdate finds no text in {sources}")
        translations = sorted(Path(root, "resources/i18n").glob(f"{name}_??.ts"))
        if not translations: faults.append(f"{name}: has no translation")
        if plurals and Path(root, f"resources/i18n/{name}_en.ts") not in translations:
            faults.append(f"{name}: has texts with plural forms, so it needs {name}_en.ts")
        for ts in translations:
            wanted = plurals if ts.stem.endswith("_en") else current
            faults += [f"{ts.name}: {fault}" for fault in faults_of(read_texts(ts)[0], wanted)]
    print("\n".join(faults) or f"{len(catalogues)} catalogues are complete")
    return bool(faults)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
