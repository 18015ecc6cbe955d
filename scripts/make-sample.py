#!/usr/bin/env python3
"""Writes the bundled sample project, data/sample/project.json.

The project is the hand-written core in scripts/sample-core.json (the
projects, the pipe classes with their selector trees, the standard tables,
the catalogue owners and the few components that show each refusal) with a
plant catalogue added to the base project: flanges, elbows, tees, reducers,
pipes, gaskets, stud bolts and valves over DN 15 to 600 and PN 10 to 100, a
folder of sizes per kind. Each size is a component of its own that holds all
it is: function code, component type, kind, pressure, nominal diameters,
material, standard, a text in German and English, and for a flange the
gasket of its joint as companion.

Run it by hand after changing it or the core, and commit both with the
output; CTest (sample_is_generated) checks that the committed file is what
this script writes, byte for byte.

    scripts/make-sample.py            writes data/sample/project.json
    scripts/make-sample.py FILE|-     writes FILE, or standard output
"""

import json
import math
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
DN_TABLE = "BASE:@3D|01|DIN|05"
CATALOGUE = "BASE:@40|CAT"
DNS = [15, 20, 25, 32, 40, 50, 65, 80, 100, 125, 150, 200, 250, 300, 350, 400, 450, 500, 600]
# Outside diameter and normal wall thickness of steel pipe (EN 10220), mm.
OD = dict(zip(DNS, ["21.3", "26.9", "33.7", "42.4", "48.3", "60.3", "76.1", "88.9", "114.3", "139.7", "168.3",
                    "219.1", "273.0", "323.9", "355.6", "406.4", "457.0", "508.0", "610.0"]))
WT = dict(zip(DNS, ["2.0", "2.3", "2.6", "2.6", "2.6", "2.9", "2.9", "3.2", "3.6", "4.0", "4.5", "6.3", "6.3",
                    "7.1", "8.0", "8.8", "10.0", "11.0", "12.5"]))
# The nominal diameters each pressure rating of EN 1092-1 flanges is made in here.
FLANGE_DNS = {10: [dn for dn in DNS if dn >= 200], 16: DNS, 25: DNS, 40: DNS,
              63: [dn for dn in DNS if dn <= 400], 100: [dn for dn in DNS if dn <= 300]}
# Bolts of a flange joint by nominal diameter: count and thread diameter, mm.
BOLTS = {
    16: dict(zip(DNS, [(4, 12), (4, 12), (4, 12), (4, 16), (4, 16), (4, 16), (8, 16), (8, 16), (8, 16), (8, 16),
                       (8, 20), (12, 20), (12, 24), (12, 24), (16, 24), (16, 27), (20, 27), (20, 30), (20, 33)])),
    40: dict(zip(DNS, [(4, 12), (4, 12), (4, 12), (4, 16), (4, 16), (4, 16), (8, 16), (8, 16), (8, 20), (8, 24),
                       (8, 24), (12, 27), (12, 30), (16, 30), (16, 33), (16, 36), (20, 36), (20, 39), (20, 45)])),
}


# ---- building blocks ------------------------------------------------------

def attr(name, value, **more):
    spec = {"name": name, "value": value}
    spec.update(more)
    return spec


def diameter(name, dn):
    return attr(name, str(dn), table=DN_TABLE)


def text(german, english):
    """A text in the project's languages, German first."""
    return {"name": "TEXT", "valueType": "C", "languageValues": [german, english]}


def chapter(name, *specs):
    return {"name": name, "specs": list(specs)}


def device(name, description, specs):
    return {"name": name, "description": description, "specs": specs}


def folder(name, description, devices):
    return {"name": name, "description": description, "folder": True, "devices": devices}


def pdms_chapter(*more):
    """The outside design system's chapter as the core's components carry it."""
    return {"name": "PDMS",
            "controlProperties": "Cols:2;ColHorizontal:0;ColsTitles:VC11|Name|;RowType:0;ColsSizes:0|800|2000|;RowTitles:",
            "specs": [attr("Selector", ""), *more]}


def dn_text(dn, dn2=None):
    return f"DN {dn}" if dn2 is None else f"DN {dn} x {dn2}"


def reductions():
    """Reducing sizes as they are stocked: one and two steps down."""
    for i, dn in enumerate(DNS):
        for step in (1, 2):
            if i - step >= 0:
                yield dn, DNS[i - step]


# ---- the series -----------------------------------------------------------

class Series:
    """One kind of component, its sizes in a folder of their own,
    CAT|<group>|<folder>. Each size is a component of its own, with no base
    component: an element is made from the root of its source's chain of base
    components, so what tells one size from another must stand on the size."""

    def __init__(self, group, folder, code, vstd, kind, german, english, material, standard, pdms=None):
        self.group, self.folder, self.code, self.vstd, self.kind = group, folder, code, vstd, kind
        self.german, self.english, self.material, self.standard = german, english, material, standard
        # Its Selector attribute is where an element records its leaf selector.
        self.pdms = pdms or pdms_chapter()
        self.sizes = []

    def path(self, name):
        return f"{CATALOGUE}|{self.group}|{self.folder}|{name}"

    def add(self, name, words, specs, pn=None, detail=None):
        """A size; `words` say it after the kind ("DN 100"), the rating and
        any detail follow."""
        if pn:
            words = f"{words} PN {pn}"
        if detail:
            words = f"{words}, {detail}"
        own = [chapter("GD", attr("VFCD", self.code, table="BASE:@3D|00|VFCD"),
                       text(f"{self.german} {self.standard} {words}, {self.material}",
                            f"{self.english} {self.standard} {words}, {self.material}"),
                       attr("MAT", self.material), attr("STANDARD", self.standard)),
               chapter("PIPE", attr("VSTD", self.vstd), attr("FTYPE", self.kind))]
        if pn:
            own.append(chapter("SEL", attr("PN", str(pn))))
        own += specs + [self.pdms]
        self.sizes.append(device(name, f"{self.german} {words}", own))


def gaskets():
    flat = Series("GASKETS", "FLAT", "10700", "GASK", "FLAT", "Flachdichtung", "Flat gasket",
                  "Faserstoff", "EN 1514-1 IBC")
    spiral = Series("GASKETS", "SPIRAL", "10710", "GASK", "SPW", "Spiraldichtung", "Spiral-wound gasket",
                    "1.4404/Graphit", "EN 1514-2")
    of_flange = {}
    for pn, dns in FLANGE_DNS.items():
        series, prefix = (flat, "GA-FLAT") if pn <= 40 else (spiral, "GA-SPW")
        for dn in dns:
            name = f"{prefix}-PN{pn}-DN{dn}"
            of_flange[pn, dn] = series.path(name)
            series.add(name, dn_text(dn), [chapter("CONN", diameter("DN1", dn))], pn)
    return [flat, spiral], of_flange


def flanges(gasket_of):
    """Each flange names the gasket of its joint as its companion."""
    kinds = [("WELDNECK", "FL-WN", "10100", "WN", "Vorschweißflansch", "Weld-neck flange", "EN 1092-1/11/B1",
              FLANGE_DNS),
             ("SLIPON", "FL-SO", "10120", "SO", "Überschiebflansch", "Hubbed slip-on flange", "EN 1092-1/12/B1",
              {pn: dns for pn, dns in FLANGE_DNS.items() if pn <= 40}),
             ("BLIND", "FL-BL", "10110", "BL", "Blindflansch", "Blind flange", "EN 1092-1/05/B1", FLANGE_DNS)]
    out = []
    for folder_name, prefix, code, kind, german, english, standard, ratings in kinds:
        series = Series("FLANGES", folder_name, code, "FLAN", kind, german, english, "P250GH", standard)
        for pn, dns in ratings.items():
            for dn in dns:
                specs = [chapter("CONN", diameter("DN1", dn)),
                         chapter("E3D", attr("PCOMPlus1", "", link=gasket_of[pn, dn]))]
                series.add(f"{prefix}-PN{pn}-DN{dn}", dn_text(dn), specs, pn)
        out.append(series)
    return out


def fittings():
    """Butt-welding fittings; their wall is the pipe's."""
    made = [Series("FITTINGS", "ELBOW90", "10200", "ELBO", "90", "Bogen 90° 3D", "Elbow 90° 3D",
                   "P235GH", "EN 10253-2 B"),
            Series("FITTINGS", "ELBOW45", "10210", "ELBO", "45", "Bogen 45° 3D", "Elbow 45° 3D",
                   "P235GH", "EN 10253-2 B"),
            Series("FITTINGS", "TEE-EQUAL", "10300", "TEE", "EQ", "T-Stück gleich", "Equal tee",
                   "P235GH", "EN 10253-2 B"),
            Series("FITTINGS", "TEE-REDUCING", "10310", "TEE", "RED", "T-Stück reduziert",
                   "Reducing tee", "P235GH", "EN 10253-2 B"),
            Series("FITTINGS", "REDUCER-CON", "10500", "REDU", "CON", "Reduzierung konzentrisch",
                   "Concentric reducer", "P235GH", "EN 10253-2 B"),
            Series("FITTINGS", "REDUCER-ECC", "10510", "REDU", "ECC", "Reduzierung exzentrisch",
                   "Eccentric reducer", "P235GH", "EN 10253-2 B")]
    elbow90, elbow45, tee, reducing_tee, concentric, eccentric = made
    for dn in DNS:
        for series, prefix in ((elbow90, "EL-90"), (elbow45, "EL-45"), (tee, "TE-EQ")):
            size = [chapter("CONN", diameter("DN1", dn), attr("OD", OD[dn]), attr("WT", WT[dn]))]
            series.add(f"{prefix}-DN{dn}", dn_text(dn), size)
    for dn, dn2 in reductions():
        for series, prefix in ((reducing_tee, "TE-RED"), (concentric, "RE-CON"), (eccentric, "RE-ECC")):
            size = [chapter("CONN", diameter("DN1", dn), diameter("DN2", dn2), attr("OD", OD[dn]),
                            attr("WT", WT[dn]))]
            series.add(f"{prefix}-DN{dn}x{dn2}", dn_text(dn, dn2), size)
    return made


def pipes():
    question = pdms_chapter(attr("QUESTION2", "", description="Vorlage der Fragen"))
    made = [Series("TUBES", "SEAMLESS", "10600", "TUBE", "SMLS", "Rohr nahtlos", "Seamless pipe",
                   "P235GH TC1", "EN 10216-2", question),
            Series("TUBES", "WELDED", "10610", "TUBE", "WELD", "Rohr geschweißt", "Welded pipe",
                   "P235GH TC1", "EN 10217-2", question)]
    for series, prefix in zip(made, ("TU-SMLS", "TU-WELD")):
        for dn in DNS:
            size = [chapter("CONN", diameter("DN1", dn), attr("OD", OD[dn]), attr("WT", WT[dn]))]
            series.add(f"{prefix}-DN{dn}", dn_text(dn), size)
    return made


def stud_bolts():
    studs = Series("BOLTING", "STUDS", "91100", "BOLT", "STUD", "Stiftschraubensatz", "Stud bolt set",
                   "25CrMo4/C35E", "EN 1515-1")
    for pn, sizes in BOLTS.items():
        for dn, (count, thread) in sizes.items():
            # Through two flanges, the gasket and two nuts, in steps of 5 mm.
            flange = 12 + dn / 25 + pn / 8
            length = 5 * math.ceil((2 * flange + 2 * 0.8 * thread + 9) / 5)
            size = [chapter("CONN", diameter("DN1", dn)),
                    chapter("BOLT", attr("COUNT", str(count)), attr("THREAD", f"M{thread}"),
                            attr("LENGTH", str(length)))]
            studs.add(f"BO-STUD-PN{pn}-DN{dn}", dn_text(dn), size, pn, f"{count} x M{thread} x {length}")
    return [studs]


def valves():
    kinds = [("GATE", "VA-GATE", "10800", "GATE", "Absperrschieber", "Gate valve", "EN 558 R14",
              [dn for dn in DNS if dn >= 50]),
             ("GLOBE", "VA-GLOBE", "10820", "GLOB", "Ventil", "Globe valve", "EN 558 R1",
              [dn for dn in DNS if dn <= 200]),
             ("BALL", "VA-BALL", "10810", "BALL", "Kugelhahn", "Ball valve", "EN 558 R27",
              [dn for dn in DNS if dn <= 300]),
             ("CHECK", "VA-CHECK", "10830", "CHEC", "Rückschlagklappe", "Swing check valve",
              "EN 558 R10", DNS)]
    out = []
    for folder_name, prefix, code, kind, german, english, standard, dns in kinds:
        series = Series("VALVES", folder_name, code, "VALV", kind, german, english, "1.0619", standard)
        for pn in (16, 40):
            for dn in dns:
                series.add(f"{prefix}-PN{pn}-DN{dn}", dn_text(dn), [chapter("CONN", diameter("DN1", dn))], pn)
        out.append(series)
    return out


def catalogue_series():
    gasket_series, gasket_of = gaskets()
    return flanges(gasket_of) + fittings() + pipes() + gasket_series + stud_bolts() + valves()


def named(entries, name):
    return next(entry for entry in entries if entry["name"] == name)


def build():
    document = json.loads((TOP / "scripts" / "sample-core.json").read_text(encoding="utf-8"))
    catalogue = named(named(named(document["projects"], "BASE")["roots"], "@40")["devices"], "CAT")["devices"]
    for series in catalogue_series():
        description = f"{series.german} {series.standard}"
        named(catalogue, series.group)["devices"].append(folder(series.folder, description, series.sizes))
    return document


# ---- writing --------------------------------------------------------------

# Lists of objects that are laid out one entry a line; all else stays on one line.
TREES = ("projects", "roots", "devices", "standardTables", "children")


def layout(node, depth=0):
    pad = "  " * depth
    if not isinstance(node, dict) or not any(isinstance(node.get(key), list) and node[key] for key in TREES):
        return json.dumps(node, ensure_ascii=False)
    lines = []
    for key, value in node.items():
        if key in TREES and isinstance(value, list) and value:
            entries = ",\n".join(f"{pad}    {layout(entry, depth + 2)}" for entry in value)
            lines.append(f'{pad}  "{key}": [\n{entries}\n{pad}  ]')
        else:
            lines.append(f"{pad}  {json.dumps(key)}: {json.dumps(value, ensure_ascii=False)}")
    return "{\n" + ",\n".join(lines) + "\n" + pad + "}"


def main(argv):
    target = argv[1] if len(argv) > 1 else str(TOP / "data" / "sample" / "project.json")
    content = layout(build()) + "\n"
    if target == "-":
        sys.stdout.write(content)
    else:
        Path(target).write_text(content, encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv)
