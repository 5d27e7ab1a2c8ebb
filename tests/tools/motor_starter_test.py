# SPDX-License-Identifier: MIT
"""The sample project: an independent reader finds in it what its description says."""
import os
import unittest

import ezdxf

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FOLDER = os.path.join(ROOT, "examples", "motor-starter")
DRAWING = os.path.join(FOLDER, "motor-starter.dxf")


def texts(chain):
    return [value for code, value in chain if code == 1000]


class MotorStarter(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.document = ezdxf.readfile(DRAWING)
        cls.inserts = list(cls.document.modelspace().query("INSERT"))

    def test_an_audit_finds_nothing(self):
        auditor = self.document.audit()
        self.assertEqual([str(entry.message) for entry in auditor.errors], [])
        self.assertEqual([str(entry.message) for entry in auditor.fixes], [])

    def test_every_page_has_its_companion_layers(self):
        layers = {layer.dxf.name: layer for layer in self.document.layers}
        for page in ("CAPA", "INDICE", "P03", "P04", "P05", "P06", "P07"):
            self.assertIn(page, layers)
            self.assertIn(page + "$DE", layers)
            self.assertIn(page + "$FORMATO", layers)
            self.assertEqual(page + "$SELO" in layers, page.startswith("P"))
        self.assertEqual(texts(layers["CAPA"].get_xdata("TVO_RZ_CAPA")), ["CAPA"])
        self.assertEqual(texts(layers["INDICE"].get_xdata("TVO_RZ_INDICE")), ["INDICE"])
        self.assertTrue(layers["RZ_FREEZE"].is_frozen())

    def test_the_same_role_stands_in_three_languages(self):
        tags = {attribute.dxf.tag for insert in self.inserts for attribute in insert.attribs}
        for names in (("RELACAO", "TAG", "ETIQUETA"), ("NUMERO", "NUMBER"), ("ID_PINO", "ID_PIN"),
                      ("REGUA", "STRIP", "REGLETA"), ("LIGACAO", "CONNECTION", "CONEXION"),
                      ("POSICAO_CTT", "POSITION_CTT"), ("FIO", "ALAMBRE"), ("CABO", "CABLE"), ("DISTANCIA",)):
            self.assertLessEqual(set(names), tags)

    def test_every_link_leads_to_a_schematic_object(self):
        places = {"TVO_RZ_UNIFILAR": 0, "TVO_LAYOUT_PAINEL": 0, "TVO_RZ_REPRESENTACAO": 1,
                  "TVO_RZ_ANILHAFIO": 0,
                  "TVO_RZ_ANILHACABO": 0}
        seen = set()
        for insert in self.inserts:
            for application, place in places.items():
                if insert.has_xdata(application):
                    target = self.document.entitydb[texts(insert.get_xdata(application))[place]]
                    self.assertTrue(target.has_xdata("TVO_RZ"), insert.dxf.handle)
                    seen.add(application)
        self.assertEqual(seen, set(places))

    def test_a_schematic_object_knows_its_representations(self):
        coil = [insert for insert in self.inserts if insert.dxf.name == "CONTACTOR_COIL"][0]
        handles = texts(coil.get_xdata("TVO_RZ_REPRESENTACAO_ESQ"))[1::2]
        self.assertEqual([self.document.entitydb[handle].dxf.name for handle in handles],
                         ["NA-POTENCIA"] * 3 + ["NA-AUX"] * 2)

    def test_the_settings_stand_on_the_carrier(self):
        carrier, = self.document.modelspace().query('POINT[layer=="RZ_FREEZE"]')
        self.assertEqual(texts(carrier.get_xdata("RZ_NUM_PAG")), ["1"])
        self.assertEqual(texts(carrier.get_xdata("RZ_ORDEM_GRU")), ["1"])
        self.assertEqual(texts(carrier.get_xdata("RZ_ORDEM_PAG_BORNES")), ["2"])
        self.assertEqual(texts(carrier.get_xdata("TVO_RZ_CFG")), ["motor-starter.cfg"])
        version = self.document.rootdict["RZ_VERSAO"]
        self.assertEqual(texts(version.get_xdata("RZ_VERSAO")), ["26.8", "26.8.17"])

    def test_virtual_components_stand_in_their_dictionary(self):
        dictionary = self.document.rootdict["ESQ_VIRTUAL_RZ"]
        self.assertEqual(list(dictionary.keys()), ["V1", "V2", "V3"])
        record = dictionary["V1"]
        self.assertEqual([tuple(tag) for tag in record.tags], [(1, "ESQ_VIRTUAL_RZ"), (2, "SENSOR_NIVEL")])
        self.assertEqual(texts(record.get_xdata("TVO_RZ_ATT_VIRTUAL"))[:1], ["RELACAO^LB1^LN"])

    def test_wires_are_polylines_on_the_page(self):
        wires = self.document.modelspace().query("LWPOLYLINE")
        self.assertGreater(len([wire for wire in wires if wire.dxf.layer == "P04"]), 10)


if __name__ == "__main__":
    unittest.main()
