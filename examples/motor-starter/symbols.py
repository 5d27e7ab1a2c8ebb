# SPDX-License-Identifier: MIT
"""The symbols of the sample project, in millimetres, connection at the top and at the bottom.

Three libraries on purpose: the power circuit comes from a Portuguese one, the control circuit from an English
one and the terminal plan from a Spanish one, so the same role stands under three tags.
"""

PORTUGUESE, ENGLISH, SPANISH = 0, 1, 2

# Role: tag in each language.
ROLES = {
    "tag": ("RELACAO", "TAG", "ETIQUETA"),
    "number": ("NUMERO", "NUMBER", "NUMERO"),
    "pin": ("ID_PINO", "ID_PIN", "ID_PIN"),
    "strip": ("REGUA", "STRIP", "REGLETA"),
    "connection": ("LIGACAO", "CONNECTION", "CONEXION"),
    "position": ("POSICAO_CTT", "POSITION_CTT", "POSICION_CTT"),
    "cable": ("CABO", "CABLE", "CABLE"),
    "wire": ("FIO", "WIRE", "ALAMBRE"),
    "distance": ("DISTANCIA", "DISTANCE", "DISTANCIA"),
    "description": ("DESCRICAO", "DESCRIPTION", "DESCRIPCION"),
    "maker": ("FABRICANTE", "MANUFACTURER", "FABRICANTE"),
    "order": ("CODIGO", "PARTNO", "CODIGO"),
    "place": ("LOCAL", "LOCAL", "LOCAL"),
}

PROMPTS = {
    "tag": ("Identificação do componente", "Component tag", "Identificación del componente"),
    "number": ("Número do borne", "Terminal number", "Número del borne"),
    "pin": ("Pinos do contato", "Pins of the contact", "Pines del contacto"),
    "strip": ("Régua de bornes", "Terminal strip", "Regleta de bornes"),
    "connection": ("Ligação", "Connection", "Conexión"),
    "position": ("Posição do contato", "Position of the contact", "Posición del contacto"),
    "cable": ("Cabo", "Cable", "Cable"),
    "wire": ("Número do fio", "Wire number", "Número del hilo"),
    "distance": ("Comprimento em metros", "Length in metres", "Longitud en metros"),
    "description": ("Descrição", "Description", "Descripción"),
    "maker": ("Fabricante", "Manufacturer", "Fabricante"),
    "order": ("Código de compra", "Order code", "Código de compra"),
    "place": ("Local de montagem", "Place of installation", "Lugar de montaje"),
}


class Library:
    """Defines the symbols of a drawing, each on its first use."""

    def __init__(self, drawing):
        self.drawing = drawing
        self.known = {}

    def get(self, name):
        if name not in self.known:
            self.known[name] = SYMBOLS[name](self.drawing.block(name))
        return self.known[name]


def give(block, language, role, x, y, **options):
    """Adds the attribute of a role; its tag and its prompt depend on the language."""
    return block.attribute(ROLES[role][language], PROMPTS[role][language], x, y, **options)


def order_data(block, language, x, y):
    """What a parts list needs and no reader of the sheet does."""
    for step, role in enumerate(("description", "maker", "order", "place")):
        give(block, language, role, x, y - 3.0 * step, height=2.0, invisible=True)
    return block


def leads(block, x=0.0):
    return block.line(x, 0, x, -7).line(x, -13, x, -20)


def open_contact(block, x=0.0):
    return leads(block, x).line(x, -13, x - 3.5, -6.5)


def closed_contact(block, x=0.0):
    return leads(block, x).line(x, -7, x + 3, -7).line(x, -13, x + 3, -6)


def frame_a3(block):
    block.box(0, 0, 420, 297).box(20, 10, 410, 287)
    for column in range(8):
        left = 20 + column * 48.75
        block.text(left + 24.4, 289.5, 3.5, str(column + 1), centered=True)
        if column:
            block.line(left, 287, left, 297)
    for row in range(6):
        top = 287 - row * 46.1667
        block.text(15, top - 24.5, 3.5, "ABCDEF"[row], centered=True)
        if row:
            block.line(10, top, 20, top)
    return block.attribute("FORMATO", "Formato da folha", 402, 291, default="A3", invisible=True)


def title_block(block):
    block.box(0, 0, 180, 40)
    block.path((0, 30), (180, 30)).path((0, 20), (180, 20)).path((0, 10), (180, 10))
    block.path((110, 0), (110, 20)).path((145, 0), (145, 20)).path((110, 30), (110, 40))
    cells = (("NOME", "Projeto", 2, 30), ("LOCAL", "Instalação", 112, 30),
             ("DESCRICAO", "Descrição da página", 2, 20), ("FUNCAO", "Projetista", 2, 10),
             ("DATA", "Data", 112, 10), ("GRUPO", "Grupo", 2, 0),
             ("PAGINA", "Página", 112, 0), ("TOTAL", "Total de páginas", 147, 0),
             ("REVISAO", "Revisão", 147, 10))
    for tag, prompt, x, y in cells:
        block.text(x, y + 7.2, 1.6, prompt)
        block.attribute(tag, prompt, x, y + 2.2, height=3.0)
    return block


def page_link(block):
    block.path((0, 3), (14, 3), (18, 0), (14, -3), (0, -3), (0, 3))
    block.attribute("DE", "Página de origem", 2, -1.2)
    return block.attribute("PAGINA", "Página de destino", 20, -1.2)


def page_mark(block):
    return block.circle(0, 0, 6).attribute("PAGINA", "Número da página", 0, -2, height=4.0, centered=True)


def node(block):
    return block.circle(0, 0, 0.8).circle(0, 0, 0.5).circle(0, 0, 0.25)


def power_terminal(block):
    block.line(0, 0, 0, -1.3).circle(0, -2.5, 1.2).line(0, -3.7, 0, -5)
    give(block, PORTUGUESE, "strip", 1.8, -0.6, height=1.8)
    give(block, PORTUGUESE, "number", 1.8, -3.2, height=2.0)
    give(block, PORTUGUESE, "tag", 1.8, -6.0, height=1.8, invisible=True)
    return give(block, PORTUGUESE, "connection", 1.8, -8.0, height=1.8, invisible=True)


def motor_breaker(block):
    for x in (0, 10, 20):
        open_contact(block, x).line(x - 1, -6, x + 1, -8).line(x - 1, -8, x + 1, -6)
        block.arc(x + 2.2, -16.5, 1.2, 90, 270)
    block.line(-13, -10, 18, -10, "DASHED").line(-13, -8, -13, -12)
    give(block, PORTUGUESE, "tag", -32, -9, height=3.5)
    for index, x in enumerate((0, 10, 20)):
        block.attribute("LIGACAO%d" % (2 * index + 1), "Ligação de entrada", x + 1, -3.5, height=1.8)
        block.attribute("LIGACAO%d" % (2 * index + 2), "Ligação de saída", x + 1, -19, height=1.8)
    return order_data(block, PORTUGUESE, -32, -14)


def power_contact(block):
    open_contact(block).arc(0, -6, 1, 270, 90)
    give(block, PORTUGUESE, "tag", -14, -9, height=3.0)
    give(block, PORTUGUESE, "pin", 1, -17, height=1.8)
    return give(block, PORTUGUESE, "position", 1, -20, height=1.8, invisible=True)


def thermal_relay(block):
    block.box(-5, -3, 25, -12)
    for x in (0, 10, 20):
        block.path((x, 0), (x, -5), (x + 3, -5), (x + 3, -10), (x, -10), (x, -15))
    give(block, PORTUGUESE, "tag", -32, -9, height=3.5)
    return order_data(block, PORTUGUESE, -32, -14)


def motor(block):
    block.circle(10, -20, 12).path((10, 0), (10, -8))
    block.path((0, 0), (0, -6), (3.6, -9.8)).path((20, 0), (20, -6), (16.4, -9.8)).line(22, -20, 30, -20)
    block.text(10, -20, 6, "M", centered=True).text(10, -27, 4, "3~", centered=True)
    give(block, PORTUGUESE, "tag", -17, -20, height=3.5)
    block.attribute("POTENCIA", "Potência", -17, -25)
    block.attribute("CORRENTE", "Corrente nominal", -17, -29)
    return order_data(block, PORTUGUESE, -17, -33)


def fuse_two_poles(block):
    for x in (0, 10):
        block.line(x, 0, x, -20).box(x - 2, -5, x + 2, -15)
    give(block, PORTUGUESE, "tag", 14, -9, height=3.5)
    block.attribute("CORRENTE", "Corrente nominal", 14, -14)
    return order_data(block, PORTUGUESE, 14, -18)


def transformer(block):
    for x in (0, 10):
        block.line(x, 0, x, -6).line(x, -24, x, -30)
    block.circle(5, -11.5, 7).circle(5, -18.5, 7).line(0, -6, 1, -6.8).line(10, -6, 9, -6.8)
    block.line(0, -24, 1, -23.2).line(10, -24, 9, -23.2)
    give(block, PORTUGUESE, "tag", 16, -12, height=3.5)
    block.attribute("TENSAO", "Tensões", 16, -17)
    return order_data(block, PORTUGUESE, 16, -21)


def wire_label(block):
    return give(block, PORTUGUESE, "wire", 0, 0.8, height=2.0, centered=True)


def cable_label(block):
    block.path((0, 0), (6, 3), (6, 6), (40, 6), (40, 0), (6, 0), (6, 3))
    give(block, PORTUGUESE, "cable", 8, 3.4, height=2.0)
    return give(block, PORTUGUESE, "distance", 8, 0.6, height=2.0)


def fuse_one_pole(block):
    block.line(0, 0, 0, -20).box(-2, -5, 2, -15)
    give(block, ENGLISH, "tag", 4, -9, height=3.5)
    block.attribute("CURRENT", "Rated current", 4, -14)
    return order_data(block, ENGLISH, 4, -18)


def changeover_contact(block):
    block.line(0, 0, 0, -7).line(0, -7, -3.5, -13.5).path((0, -20), (0, -13), (-3.5, -13))
    block.path((10, -20), (10, -13), (4, -13))
    give(block, ENGLISH, "tag", -14, -9, height=3.5)
    give(block, ENGLISH, "pin", 2, -5, height=2.0)
    return give(block, ENGLISH, "position", 2, -9, height=2.0, invisible=True)


def auxiliary_contact(block):
    open_contact(block)
    give(block, ENGLISH, "tag", 2, -8, height=3.5)
    give(block, ENGLISH, "pin", 2, -13, height=2.0)
    return give(block, ENGLISH, "position", 2, -17, height=2.0, invisible=True)


def push_button(block, closed):
    if closed:
        closed_contact(block).line(-8, -10, 1.5, -10, "DASHED")
    else:
        open_contact(block).line(-8, -10, -1.7, -10, "DASHED")
    block.path((-6.5, -7.5), (-8, -7.5), (-8, -12.5), (-6.5, -12.5))
    give(block, ENGLISH, "tag", -20, -9, height=3.5)
    give(block, ENGLISH, "pin", 4, -13, height=2.0)
    return order_data(block, ENGLISH, -20, -14)


def coil(block):
    block.line(0, 0, 0, -6).box(-6, -6, 6, -14).line(0, -14, 0, -20)
    give(block, ENGLISH, "tag", -18, -11, height=3.5)
    block.attribute("CONNECTION1", "First connection", 1, -3, height=2.0)
    block.attribute("CONNECTION2", "Second connection", 1, -18, height=2.0)
    block.attribute("VOLTAGE", "Coil voltage", 8, -11)
    return order_data(block, ENGLISH, -18, -16)


def lamp(block):
    block.line(0, 0, 0, -6).circle(0, -10, 4).line(0, -14, 0, -20)
    block.line(-2.83, -7.17, 2.83, -12.83).line(-2.83, -12.83, 2.83, -7.17)
    give(block, ENGLISH, "tag", 6, -9, height=3.5)
    block.attribute("COLOUR", "Colour", 6, -14)
    return order_data(block, ENGLISH, 6, -18)


def control_terminal(block):
    block.line(0, 0, 1.3, 0).circle(2.5, 0, 1.2).line(3.7, 0, 5, 0)
    give(block, ENGLISH, "strip", -1, 2.2, height=2.0)
    give(block, ENGLISH, "number", 4, 2.2, height=2.0)
    return give(block, ENGLISH, "connection", -1, -4.5, height=2.0, invisible=True)


def strip_terminal(block):
    block.box(0, 0, 12, 30).path((0, 22), (12, 22)).path((0, 8), (12, 8)).circle(6, 15, 2.5)
    give(block, SPANISH, "number", 6, 24, height=3.5, centered=True)
    give(block, SPANISH, "strip", 6, 3, height=2.0, centered=True)
    give(block, SPANISH, "tag", 6, 18.5, height=1.8, invisible=True)
    give(block, SPANISH, "connection", 7, 34, height=2.2, rotation=90.0)
    give(block, SPANISH, "wire", 7, -20, height=2.2, rotation=90.0)
    give(block, SPANISH, "cable", 7, -40, height=2.2, rotation=90.0)
    return block.attribute("DESTINO", "Conexión externa", 3, -40, height=2.2, rotation=90.0, invisible=True)


def single_line(block, draw):
    draw(block)
    return give(block, PORTUGUESE, "tag", 10, -11, height=3.5)


def single_breaker(block):
    open_contact(block).line(-1, -6, 1, -8).line(-1, -8, 1, -6).line(-2, -1, 2, -4)


def single_contactor(block):
    open_contact(block).arc(0, -6, 1, 270, 90)


def single_relay(block):
    block.box(-5, -4, 5, -16).path((0, 0), (0, -7), (3, -7), (3, -13), (0, -13), (0, -20))


def single_motor(block):
    block.line(0, 0, 0, -4).circle(0, -12, 8).text(0, -13, 4, "M", centered=True)


def footprint(block, width, height):
    block.box(0, 0, width, height).box(2, 2, width - 2, height - 2)
    give(block, ENGLISH, "tag", width / 2, height - 9, height=3.5, centered=True)
    return order_data(block, ENGLISH, 1, -4)


def rail(block):
    return block.box(0, 0, 200, 7).line(0, 1.5, 200, 1.5).line(0, 5.5, 200, 5.5).attribute(
        "COMPRIMENTO", "Comprimento", 202, 2)


SYMBOLS = {
    "FORMATO_A3": frame_a3,
    "SELO_A3": title_block,
    "DE_PAGINA": page_link,
    "PAGINA_NUMERO": page_mark,
    "BLK_CTR_PONTO": node,
    "BOR-PASSAGEM": power_terminal,
    "DISJUNTOR_MOTOR": motor_breaker,
    "NA-POTENCIA": power_contact,
    "RELE_TERMICO": thermal_relay,
    "MOTOR_TRIFASICO": motor,
    "FUSIVEL_2P": fuse_two_poles,
    "TRAFO_COMANDO": transformer,
    "ANILHA_FIO": wire_label,
    "ANILHA_CABO": cable_label,
    "FUSE_1P": fuse_one_pole,
    "NAF-OVERLOAD": changeover_contact,
    "NA-AUX": auxiliary_contact,
    "BT-STOP": lambda block: push_button(block, True),
    "BT-START": lambda block: push_button(block, False),
    "CONTACTOR_COIL": coil,
    "LAMP": lamp,
    "BOR-CONTROL": control_terminal,
    "BOR-REGLETA": strip_terminal,
    "UNI_DISJUNTOR": lambda block: single_line(block, single_breaker),
    "UNI_CONTATOR": lambda block: single_line(block, single_contactor),
    "UNI_RELE": lambda block: single_line(block, single_relay),
    "UNI_MOTOR": lambda block: single_line(block, single_motor),
    "LAY_BREAKER": lambda block: footprint(block, 45, 65),
    "LAY_CONTACTOR": lambda block: footprint(block, 45, 60),
    "LAY_OVERLOAD": lambda block: footprint(block, 45, 50),
    "LAY_TRANSFORMER": lambda block: footprint(block, 70, 65),
    "TRILHO_35": rail,
}
