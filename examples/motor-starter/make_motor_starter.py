#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the sample project: a direct-on-line motor starter on seven pages of one drawing.

    make_motor_starter.py [FILE]      writes FILE, or motor-starter.dxf beside this script

Each page is a layer; the pages lie side by side in model space. The same call always gives the same bytes.
"""
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from dxfwriter import FORM_FEED, Drawing  # noqa: E402
from symbols import Library  # noqa: E402

STEP = 450.0          # from one sheet to the next
POWER, CONTROL, EARTH = 1, 5, 3   # colours of the wires

# Layer, description for the stamp and the index, group.
PAGES = (
    ("CAPA", "Capa", ""),
    ("INDICE", "Índice", ""),
    ("P03", "Circuito de força", "MOTOR"),
    ("P04", "Control circuit", "MOTOR"),
    ("P05", "Plano de bornes X1, X2", "BORNES"),
    ("P06", "Diagrama unifilar", "MOTOR"),
    ("P07", "Panel layout", "PAINEL"),
)

MAKERS = {
    "Q1": ("Disjuntor-motor 9–14 A", "Oficina Modelo", "DM-14"),
    "K1": ("Contactor 18 A, 24 VDC", "Oficina Modelo", "CT-18"),
    "F1": ("Relé térmico de sobrecarga 10–16 A", "Oficina Modelo", "RT-16"),
    "F2": ("Base fusível bipolar 2 A", "Oficina Modelo", "BF-2"),
    "T1": ("Transformador de comando 100 VA", "Oficina Modelo", "TC-100"),
    "M1": ("Motor trifásico 5,5 kW, 4 polos", "Fábrica Exemplo", "M3-112"),
    "F3": ("Control fuse 4 A", "Model Works", "CF-4"),
    "S0": ("Stop push-button, red", "Model Works", "PB-R"),
    "S1": ("Start push-button, green", "Model Works", "PB-G"),
    "H1": ("Signal lamp, green, 24 VDC", "Model Works", "SL-G"),
    "H2": ("Signal lamp, yellow, 24 VDC", "Model Works", "SL-Y"),
}


class Page:
    """One sheet: its layers and the place of its lower left corner."""

    def __init__(self, project, index):
        self.project, self.drawing = project, project.drawing
        self.name, self.description, self.group = PAGES[index]
        self.number, self.left = index + 1, index * STEP

    def insert(self, name, x, y, values=None, **options):
        layer = self.name + options.pop("companion", "")
        return self.drawing.insert(self.project.library.get(name), layer, self.left + x, y, values, **options)

    def wire(self, *points, color=CONTROL):
        return self.drawing.polyline(self.name, [(self.left + x, y) for x, y in points], color=color)

    def shape(self, *points):
        self.drawing.polyline(self.name, [(self.left + x, y) for x, y in points], closed=True)

    def text(self, x, y, height, value, **options):
        self.drawing.text(self.name, self.left + x, y, height, value, **options)

    def node(self, x, y):
        self.insert("BLK_CTR_PONTO", x, y, color=7)


def parts(tag, english=False, place="+QCM"):
    """The attributes of a component that a parts list reads."""
    description, maker, order = MAKERS[tag]
    names = ("TAG", "DESCRIPTION", "MANUFACTURER", "PARTNO") if english else (
        "RELACAO", "DESCRICAO", "FABRICANTE", "CODIGO")
    return dict(zip(names + ("LOCAL",), (tag, description, maker, order, place)))


class Project:
    """The drawing, its pages, and of each component its schematic object and its other appearances."""

    def __init__(self):
        self.drawing = Drawing()
        self.drawing.extent = (STEP * (len(PAGES) - 1) + 420.0, 297.0)
        self.library = Library(self.drawing)
        self.pages = [Page(self, index) for index in range(len(PAGES))]
        self.components = {}
        self.appearances = {}

    def make(self):
        self.layers()
        for page in self.pages:
            self.sheet(page)
        for page, draw in zip(self.pages, (cover, index, power, control, terminals, single_line, panel)):
            draw(self, page)
        self.links()
        self.settings()
        self.virtual_components()
        return self.drawing.save()

    def layers(self):
        marks = {"CAPA": [("TVO_RZ_CAPA", ("CAPA",))], "INDICE": [("TVO_RZ_INDICE", ("INDICE",))]}
        self.drawing.layer("RZ_FREEZE", 8, frozen=True)
        for page in self.pages:
            special = page.name in marks
            self.drawing.layer(page.name, 7, xdata=marks.get(page.name, ()))
            for companion, color in (("$DE", 6), ("$FORMATO", 8)) + (() if special else (("$SELO", 4),)):
                self.drawing.layer(page.name + companion, color)

    def sheet(self, page):
        page.insert("FORMATO_A3", 0, 0, {"FORMATO": "A3"}, companion="$FORMATO")
        page.insert("PAGINA_NUMERO", 400, 275, {"PAGINA": str(page.number)}, companion="$FORMATO")
        if page.number > 1:
            before = PAGES[page.number - 2][0]
            page.insert("DE_PAGINA", 25, 15, {"DE": before, "PAGINA": page.name}, companion="$DE")
        if page.name not in ("CAPA", "INDICE"):
            page.insert("SELO_A3", 230, 10, {
                "NOME": "Partida direta do motor M1", "LOCAL": "Casa de bombas",
                "DESCRICAO": page.description,
                "FUNCAO": "Exemplo", "DATA": "2026-08-17", "GRUPO": page.group, "PAGINA": str(page.number),
                "TOTAL": str(len(PAGES)), "REVISAO": "A"}, companion="$SELO")

    def component(self, tag, reference, norm):
        """The schematic object of a component: the one that its other appearances point to."""
        self.components[tag] = reference
        return reference.mark("TVO_RZ", "IEC" + FORM_FEED + norm)

    def links(self):
        """What the schematic objects know of their other appearances, and contacts of their coil."""
        for tag, looks in self.appearances.items():
            schematic = self.components[tag]
            key = "IEC" + FORM_FEED + tag
            if "single" in looks:
                looks["single"].mark("TVO_RZ_UNIFILAR", schematic.handle, key)
                looks["single"].mark("TVO_RZ_ESQUEMATICO_UNIFILAR", schematic.handle)
                schematic.mark("TVO_RZ_ESQUEMATICO_UNIFILAR", looks["single"].handle)
            if "layout" in looks:
                looks["layout"].mark("TVO_LAYOUT_RZ", "QCM")
                looks["layout"].mark("TVO_LAYOUT_PAINEL", schematic.handle, key, looks["rail"].handle)
                schematic.mark("TVO_LAYOUT_ESQUEMA", looks["layout"].handle, key, looks["rail"].handle)
            if "contacts" in looks:
                chain = []
                for number, contact in enumerate(looks["contacts"], 1):
                    contact.mark("TVO_RZ_REPRESENTACAO_KEY", "IEC", tag)
                    contact.mark("TVO_RZ_REPRESENTACAO", str(number), schematic.handle, "IEC_" + tag)
                    chain += [str(number), contact.handle]
                schematic.mark("TVO_RZ_REPRESENTACAO_ESQ", *chain)

    def appear(self, tag, **looks):
        self.appearances.setdefault(tag, {}).update(looks)

    def settings(self):
        self.drawing.point("RZ_FREEZE", 0, 0, [
            ("RZ_NUM_PAG", ("1",)), ("RZ_ORDEM_GRU", ("1",)), ("RZ_ORDEM_PAG_MOTOR", ("1",)),
            ("RZ_ORDEM_PAG_BORNES", ("2",)), ("RZ_ORDEM_PAG_PAINEL", ("1",)),
            ("TVO_RZ_PAINEL", ("QCM", "Quadro de comando do motor", "CAMPO", "Instalação em campo")),
            ("TVO_RZ_CFG", ("motor-starter.cfg",))])
        self.drawing.dictionary("RZ_VERSAO", [("RZ_VERSAO", ("26.8", "26.8.17"))])

    def virtual_components(self):
        """Components that no sheet shows: spare parts and a device of another supplier."""
        dictionary = self.drawing.dictionary("ESQ_VIRTUAL_RZ")
        virtual = (
            ("V1", "SENSOR_NIVEL", (("RELACAO", "B1", "N"), ("DESCRICAO", "Sensor de nível do poço", "N"),
                                    ("NUMERO", "1", "N"), ("LOCAL", "+CAMPO", "N"), ("FABRICANTE", "", "N"),
                                    ("CODIGO", "SN-4", "S"))),
            ("V2", "SPARE_FUSE", (("TAG", "F9", "N"), ("DESCRIPTION", "Spare fuses 4 A, set of 10", "N"),
                                  ("PARTNO", "CF-4", "S"))),
            ("V3", "BOR-RESERVA", (("ETIQUETA", "X3", "N"), ("REGLETA", "X3", "N"), ("NUMERO", "1", "N"))),
        )
        for key, block, attributes in virtual:
            lines = tuple(FORM_FEED.join(fields) for fields in attributes)
            self.drawing.record(dictionary, key, [(1, "ESQ_VIRTUAL_RZ"), (2, block)],
                                [("TVO_RZ_ATT_VIRTUAL", lines)])


def cover(project, page):
    page.text(215, 200, 12, "PARTIDA DIRETA", centered=True)
    page.text(215, 182, 8, "Motor M1 · 5,5 kW · 400 V", centered=True)
    page.text(215, 166, 5, "Direct-on-line starter · Arranque directo", centered=True)
    page.shape((60, 150), (370, 150), (370, 220), (60, 220))
    rows = (("Instalação", "Casa de bombas"), ("Quadro", "QCM"), ("Tensão de comando", "24 V"),
            ("Norma dos símbolos", "IEC 60617"), ("Data", "2026-08-17"))
    for row, (name, value) in enumerate(rows):
        y = 110 - 8 * row
        page.text(110, y, 4, name)
        page.text(215, y, 4, value)
        page.wire((105, y - 2), (325, y - 2), color=8)


def index(project, page):
    page.text(215, 255, 8, "ÍNDICE", centered=True)
    page.shape((60, 235 - 10 * len(PAGES)), (370, 235 - 10 * len(PAGES)), (370, 245), (60, 245))
    for x, name in ((65, "Página"), (105, "Folha"), (150, "Descrição"), (310, "Grupo")):
        page.text(x, 237.5, 4, name)
    for row, (name, description, group) in enumerate(PAGES):
        y = 228 - 10 * row
        page.wire((60, y + 7), (370, y + 7), color=8)
        for x, value in ((65, str(row + 1)), (105, name), (150, description), (310, group)):
            if value:
                page.text(x, y, 3.5, value)


def power(project, page):
    phases = (("L1", 120.0, "1", "4", "U1"), ("L2", 130.0, "2", "5", "V1"), ("L3", 140.0, "3", "6", "W1"))
    page.text(70, 276.5, 3, "3 × 400 V, 60 Hz")
    for name, x, line, load, motor_pin in phases:
        page.text(x, 276.5, 3, name, centered=True)
        for y1, y2 in ((275, 270), (265, 245), (225, 205), (185, 165), (150, 130), (125, 110)):
            page.wire((x, y1), (x, y2), color=POWER)
        page.insert("BOR-PASSAGEM", x, 270, {"REGUA": "X1", "NUMERO": line, "RELACAO": "X1",
                                             "LIGACAO": "Q1:" + name})
        page.insert("BOR-PASSAGEM", x, 130, {"REGUA": "X1", "NUMERO": load, "RELACAO": "X1",
                                             "LIGACAO": "M1:" + motor_pin})
    page.text(165, 276.5, 3, "PE", centered=True)
    for points in (((165, 275), (165, 270)), ((165, 265), (165, 130)), ((165, 125), (165, 90), (150, 90))):
        page.wire(*points, color=EARTH)
    for y, pin, target in ((270, "PE1", "PE"), (130, "PE2", "M1:PE")):
        page.insert("BOR-PASSAGEM", 165, y, {"REGUA": "X1", "NUMERO": pin, "RELACAO": "X1",
                                             "LIGACAO": target})
    power_devices(project, page)
    power_supply_of_control(project, page)
    power_labels(project, page)


def power_devices(project, page):
    pins = {"LIGACAO%d" % pin: str(pin) for pin in range(1, 7)}
    project.component("Q1", page.insert("DISJUNTOR_MOTOR", 120, 245, {**parts("Q1"), **pins}), "Q")
    contacts = []
    for position, x in enumerate((120, 130, 140)):
        contacts.append(page.insert("NA-POTENCIA", x, 205, {
            "RELACAO": "K1", "ID_PINO": "%d-%d" % (2 * position + 1, 2 * position + 2),
            "POSICAO_CTT": str(position + 1)}, hidden=("RELACAO",) if position else ()))
    project.appear("K1", contacts=contacts)
    project.component("F1", page.insert("RELE_TERMICO", 120, 165, parts("F1")), "F")
    project.component("M1", page.insert("MOTOR_TRIFASICO", 120, 110, {
        **parts("M1", place="+CAMPO"), "POTENCIA": "5,5 kW", "CORRENTE": "11,2 A"}), "M")


def power_supply_of_control(project, page):
    page.wire((120, 258), (250, 258), (250, 245), color=POWER)
    page.wire((130, 252), (240, 252), (240, 245), color=POWER)
    page.node(120, 258)
    page.node(130, 252)
    project.component("F2", page.insert("FUSIVEL_2P", 240, 245, {**parts("F2"), "CORRENTE": "2 A"}), "F")
    project.component("T1", page.insert("TRAFO_COMANDO", 240, 215, {**parts("T1"), "TENSAO": "400 / 24 V"}),
                      "T")
    for x, number, name in ((240, "1", "L+"), (250, "2", "M")):
        page.wire((x, 225), (x, 215), color=POWER)
        page.wire((x, 185), (x, 175))
        page.insert("BOR-PASSAGEM", x, 175, {"REGUA": "X2", "NUMERO": number, "RELACAO": "X2",
                                             "LIGACAO": "T1:" + name})
        page.wire((x, 170), (x, 155))
    page.insert("DE_PAGINA", 240, 150, {"DE": "P03", "PAGINA": "P04"}, companion="$DE")


def power_labels(project, page):
    for x, y, wire, tag in ((120, 235, "1L1", "Q1"), (130, 235, "1L2", "Q1"), (140, 235, "1L3", "Q1"),
                            (120, 195, "2L1", "F1"), (130, 195, "2L2", "F1"), (140, 195, "2L3", "F1")):
        label = page.insert("ANILHA_FIO", x, y - 22, {"FIO": wire}, rotation=90.0, color=2)
        label.mark("TVO_RZ_ANILHAFIO", project.components[tag].handle)
    cable = page.insert("ANILHA_CABO", 165, 115, {"CABO": "W1 4 × 2,5 mm²", "DISTANCIA": "35"})
    cable.mark("TVO_RZ_ANILHACABO", project.components["M1"].handle)


def control(project, page):
    for y, number, name in ((265, "1", "24 V"), (90, "2", "0 V")):
        page.text(40, y + 3, 3, name)
        page.insert("BOR-CONTROL", 60, y, {"STRIP": "X2", "NUMBER": number, "CONNECTION": "T1"})
    page.wire((65, 265), (90, 265))
    project.component("F3", page.insert("FUSE_1P", 90, 265, {**parts("F3", True), "CURRENT": "4 A"},
                                        rotation=90.0),
                      "F")
    page.wire((110, 265), (330, 265))
    page.wire((65, 90), (330, 90))
    control_start(project, page)
    control_lamps(project, page)


def control_start(project, page):
    page.wire((120, 265), (120, 255))
    page.node(120, 265)
    overload = page.insert("NAF-OVERLOAD", 120, 255, {"TAG": "F1", "ID_PIN": "95-96-98", "POSITION_CTT": "1"})
    project.appear("F1", contacts=[overload])
    page.wire((120, 235), (120, 225))
    project.component("S0", page.insert("BT-STOP", 120, 225, {
        **parts("S0", True, "+CAMPO"), "ID_PIN": "11-12"}), "S")
    page.wire((120, 205), (120, 195))
    project.component("S1", page.insert("BT-START", 120, 195, {
        **parts("S1", True, "+CAMPO"), "ID_PIN": "13-14"}), "S")
    page.wire((120, 175), (120, 150))
    page.wire((120, 200), (160, 200), (160, 195))
    page.wire((160, 175), (160, 165), (120, 165))
    for y in (200, 165):
        page.node(120, y)
    seal = page.insert("NA-AUX", 160, 195, {"TAG": "K1", "ID_PIN": "13-14", "POSITION_CTT": "4"})
    project.appearances["K1"]["contacts"].append(seal)
    project.component("K1", page.insert("CONTACTOR_COIL", 120, 150, {
        **parts("K1", True), "CONNECTION1": "A1", "CONNECTION2": "A2", "VOLTAGE": "24 VDC"}), "K")
    page.wire((120, 130), (120, 90))
    page.node(120, 90)
    for row, value in enumerate(("1-2  P03", "3-4  P03", "5-6  P03", "13-14  P04", "23-24  P04")):
        page.text(112, 78 - 4 * row, 2.2, value)


def control_lamps(project, page):
    page.wire((200, 265), (200, 195))
    page.node(200, 265)
    contact = page.insert("NA-AUX", 200, 195, {"TAG": "K1", "ID_PIN": "23-24", "POSITION_CTT": "5"})
    project.appearances["K1"]["contacts"].append(contact)
    page.wire((200, 175), (200, 150))
    page.wire((130, 235), (130, 230), (250, 230), (250, 150))
    for x, tag, colour, text in ((200, "H1", "green", "Motor running"), (250, "H2", "yellow", "Overload")):
        reference = page.insert("LAMP", x, 150, {**parts(tag, True), "COLOUR": colour})
        project.component(tag, reference, "H").mark("TVO_RZ_CIRCLOC", 1)
        page.wire((x, 130), (x, 90))
        page.node(x, 90)
        page.text(x, 80, 3, text, centered=True)


def terminals(project, page):
    strips = (
        ("X1", 60.0, (("1", "Q1:1", "1L1", "W0", "L1"), ("2", "Q1:3", "1L2", "W0", "L2"),
                      ("3", "Q1:5", "1L3", "W0", "L3"), ("4", "F1:2", "2L1", "W1", "M1:U1"),
                      ("5", "F1:4", "2L2", "W1", "M1:V1"), ("6", "F1:6", "2L3", "W1", "M1:W1"),
                      ("PE1", "PE", "PE", "W0", "PE"),
                      ("PE2", "PE", "PE", "W1", "M1:PE"))),
        ("X2", 220.0, (("1", "T1:L+", "24", "W2", "S0:11"), ("2", "T1:M", "0", "W2", "H1:2"),
                       ("3", "K1:13", "13", "W2", "S1:13"), ("4", "K1:14", "14", "W2", "S1:14"))))
    for strip, left, rows in strips:
        page.text(left, 250, 5, "Regleta " + strip)
        for column, (number, connection, wire, cable, target) in enumerate(rows):
            x = left + 14 * column
            page.insert("BOR-REGLETA", x, 170, {
                "NUMERO": number, "REGLETA": strip, "ETIQUETA": strip, "CONEXION": connection,
                "ALAMBRE": wire,
                "CABLE": cable, "DESTINO": target})
            color = EARTH if wire == "PE" else POWER if strip == "X1" else CONTROL
            page.wire((x + 6, 200), (x + 6, 202), color=color)
            page.wire((x + 9, 170), (x + 9, 120), color=color)
            page.text(x + 6, 112, 2.2, target, rotation=270.0)
    page.text(40, 224, 2.5, "Interno", rotation=90.0)
    page.text(40, 135, 2.5, "Externo", rotation=90.0)


def single_line(project, page):
    page.text(135, 262, 3, "3 × 400 V, 60 Hz", centered=True)
    page.wire((100, 255), (170, 255), color=POWER)
    chain = (("Q1", "UNI_DISJUNTOR", 245), ("K1", "UNI_CONTATOR", 215), ("F1", "UNI_RELE", 185),
             ("M1", "UNI_MOTOR", 155))
    page.wire((135, 255), (135, 245), color=POWER)
    for tag, block, y in chain:
        project.appear(tag, single=page.insert(block, 135, y, {"RELACAO": tag}))
        page.text(165, y - 11, 3, MAKERS[tag][0])
        if tag != "M1":
            page.wire((135, y - 20), (135, y - 30), color=POWER)


def panel(project, page):
    page.shape((60, 60), (330, 60), (330, 270), (60, 270))
    page.shape((80, 70), (310, 70), (310, 260), (80, 260))
    page.text(195, 273, 3.5, "QCM 400 × 300 × 200", centered=True)
    rails = [page.insert("TRILHO_35", 90, y, {"COMPRIMENTO": "200"}, color=8) for y in (205, 112)]
    places = (("Q1", "LAY_BREAKER", 95, 0), ("K1", "LAY_CONTACTOR", 150, 0), ("F1", "LAY_OVERLOAD", 205, 0),
              ("T1", "LAY_TRANSFORMER", 95, 1))
    for tag, block, x, row in places:
        y = (180, 85)[row]
        project.appear(tag, layout=page.insert(block, x, y, parts(tag, True)), rail=rails[row])


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    target = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "motor-starter.dxf")
    text = Project().make()
    with open(target, "w", encoding="utf-8", newline="\n") as file:
        file.write(text)


if __name__ == "__main__":
    main()
