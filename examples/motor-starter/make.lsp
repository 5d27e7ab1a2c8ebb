; SPDX-License-Identifier: MIT
; Makes the sample project: a direct-on-line motor starter on seven pages of one drawing. In this folder:
;
;     lmhost run --new make.lsp --save motor-starter.dxf
;
; Each page is a layer; the pages lie side by side in model space. The symbols come from the folder symbols.
; The same call always gives the same bytes.

; From one sheet to the next.
(setq step 450.0)
(setq power-colour 1 control-colour 5 earth-colour 3)

; Layer, description for the stamp and the index, group.
(setq pages
  '(("CAPA" "Capa" "") ("INDICE" "Índice" "") ("P03" "Circuito de força" "MOTOR")
    ("P04" "Control circuit" "MOTOR") ("P05" "Plano de bornes X1, X2" "BORNES")
    ("P06" "Diagrama unifilar" "MOTOR") ("P07" "Panel layout" "PAINEL")))

; Tag, description, maker, order code.
(setq makers
  '(("Q1" "Disjuntor-motor 9–14 A" "Oficina Modelo" "DM-14")
    ("K1" "Contactor 18 A, 24 VDC" "Oficina Modelo" "CT-18")
    ("F1" "Relé térmico de sobrecarga 10–16 A" "Oficina Modelo" "RT-16")
    ("F2" "Base fusível bipolar 2 A" "Oficina Modelo" "BF-2")
    ("T1" "Transformador de comando 100 VA" "Oficina Modelo" "TC-100")
    ("M1" "Motor trifásico 5,5 kW, 4 polos" "Fábrica Exemplo" "M3-112")
    ("F3" "Control fuse 4 A" "Model Works" "CF-4")
    ("S0" "Stop push-button, red" "Model Works" "PB-R")
    ("S1" "Start push-button, green" "Model Works" "PB-G")
    ("H1" "Signal lamp, green, 24 VDC" "Model Works" "SL-G")
    ("H2" "Signal lamp, yellow, 24 VDC" "Model Works" "SL-Y")))

; --- Drawing on a page: "page" is its layer, "left" where its sheet begins ---

(defun radians (degrees) (/ (* pi degrees) 180.0))
(defun change (e group) (entmod (list (cons -1 e) group)))
(defun handle (e) (cdr (assoc 5 (entget e))))

; Places a symbol with its values, given as tag, value and so on; the result is its entity. The attributes go
; to the layer too, so that they are seen with their page and not without it.
(defun insert-on (layer name x y turn values / e part)
  (apply 'command (append (list "_LMINSERT" (strcat "symbols/" name ".dxf") layer (list (+ left x) (float y)) turn)
                          values '("")))
  (setq e (entlast) part (entnext e))
  (while (and part (= (cdr (assoc 0 (entget part))) "ATTRIB"))
    (change part (cons 8 layer))
    (setq part (entnext part)))
  e)

(defun insert (name x y values) (insert-on page name x y 0 values))

(defun node (x y) (change (insert "BLK_CTR_PONTO" x y nil) '(62 . 7)))

; Points are given as x y x y and so on.
(defun polyline (numbers closed colour / points)
  (while numbers
    (setq points (append points (list (list 10 (+ left (car numbers)) (float (cadr numbers)))))
          numbers (cddr numbers)))
  (entmake (append (list '(0 . "LWPOLYLINE") (cons 8 page) (cons 90 (length points)) (cons 70 closed)
                         '(43 . 0.0))
                   (if colour (list (cons 62 colour))) points)))

(defun wire (numbers colour) (polyline numbers 0 colour))
(defun shape (numbers) (polyline numbers 1 nil))

(defun turned-text (x y height value turn / point)
  (setq point (list (+ left x) (float y) 0.0))
  (entmake (list '(0 . "TEXT") (cons 8 page) (cons 10 point) (cons 40 (float height)) (cons 1 value)
                 (cons 50 (radians turn)) '(7 . "Standard"))))

(defun text (x y height value) (turned-text x y height value 0))

(defun centred (x y height value / point)
  (setq point (list (+ left x) (float y) 0.0))
  (entmake (list '(0 . "TEXT") (cons 8 page) (cons 10 point) (cons 40 (float height)) (cons 1 value)
                 '(7 . "Standard") '(72 . 1) (cons 11 point))))

; --- Extended data, components and their appearances ---

(defun texts (values) (mapcar '(lambda (value) (if (= (type value) 'INT) (cons 1071 value) (cons 1000 value))) values))

(defun mark (e application values)
  (regapp application)
  (change e (list -3 (cons application (texts values))))
  e)

(defun key-of (text) (strcat "IEC" (chr 12) text))

; The schematic object of a component: the one that its other appearances point to.
(defun component (tag e norm)
  (setq components (cons (cons tag e) components))
  (mark e "TVO_RZ" (list (key-of norm))))

(defun schematic (tag) (cdr (assoc tag components)))

; The attributes of a component that a parts list reads.
(defun values-of (names tag place / entry)
  (setq entry (assoc tag makers))
  (list (car names) tag (cadr names) (cadr entry) (caddr names) (caddr entry) (cadddr names) (cadddr entry)
        "LOCAL" place))

(defun parts (tag place) (values-of '("RELACAO" "DESCRICAO" "FABRICANTE" "CODIGO") tag place))
(defun english-parts (tag place) (values-of '("TAG" "DESCRIPTION" "MANUFACTURER" "PARTNO") tag place))

(defun link-single-line (tag e)
  (mark e "TVO_RZ_UNIFILAR" (list (handle (schematic tag)) (key-of tag)))
  (mark e "TVO_RZ_ESQUEMATICO_UNIFILAR" (list (handle (schematic tag))))
  (mark (schematic tag) "TVO_RZ_ESQUEMATICO_UNIFILAR" (list (handle e))))

(defun link-footprint (tag e rail)
  (mark e "TVO_LAYOUT_RZ" '("QCM"))
  (mark e "TVO_LAYOUT_PAINEL" (list (handle (schematic tag)) (key-of tag) (handle rail)))
  (mark (schematic tag) "TVO_LAYOUT_ESQUEMA" (list (handle e) (key-of tag) (handle rail))))

; The contacts of a component know their place among them, and the component knows all of them.
(defun link-contacts (tag contacts / number chain)
  (setq number 0)
  (foreach e contacts
    (setq number (1+ number))
    (mark e "TVO_RZ_REPRESENTACAO_KEY" (list "IEC" tag))
    (mark e "TVO_RZ_REPRESENTACAO" (list (itoa number) (handle (schematic tag)) (strcat "IEC_" tag)))
    (setq chain (append chain (list (itoa number) (handle e)))))
  (mark (schematic tag) "TVO_RZ_REPRESENTACAO_ESQ" chain))

; --- Layers and sheets ---

(defun make-layer (name colour frozen)
  (entmake (list '(0 . "LAYER") (cons 2 name) (cons 70 frozen) (cons 62 colour) '(6 . "Continuous"))))

(defun layers ()
  (make-layer "RZ_FREEZE" 8 1)
  (foreach entry pages
    (make-layer (car entry) 7 0)
    (make-layer (strcat (car entry) "$DE") 6 0)
    (make-layer (strcat (car entry) "$FORMATO") 8 0)
    (if (wcmatch (car entry) "P##") (make-layer (strcat (car entry) "$SELO") 4 0)))
  (mark (tblobjname "LAYER" "CAPA") "TVO_RZ_CAPA" '("CAPA"))
  (mark (tblobjname "LAYER" "INDICE") "TVO_RZ_INDICE" '("INDICE")))

(defun on (companion name x y values) (insert-on (strcat page companion) name x y 0 values))

(defun sheet (number before description group)
  (on "$FORMATO" "FORMATO_A3" 0 0 '("FORMATO" "A3"))
  (on "$FORMATO" "PAGINA_NUMERO" 400 275 (list "PAGINA" (itoa number)))
  (if before (on "$DE" "DE_PAGINA" 25 15 (list "DE" before "PAGINA" page)))
  (if (wcmatch page "P##")
    (on "$SELO" "SELO_A3" 230 10
        (list "NOME" "Partida direta do motor M1" "LOCAL" "Casa de bombas" "DESCRICAO" description
              "FUNCAO" "Exemplo" "DATA" "2026-08-17" "GRUPO" group "PAGINA" (itoa number)
              "TOTAL" (itoa (length pages)) "REVISAO" "A"))))

(defun go-to (number)
  (setq page (car (nth (1- number) pages)) left (* step (1- number))))

(defun sheets ( / number before)
  (setq number 0)
  (foreach entry pages
    (setq number (1+ number))
    (go-to number)
    (sheet number before (cadr entry) (caddr entry))
    (setq before page)))

; --- The cover and the index ---

(defun cover ( / y)
  (centred 215 200 12 "PARTIDA DIRETA")
  (centred 215 182 8 "Motor M1 · 5,5 kW · 400 V")
  (centred 215 166 5 "Direct-on-line starter · Arranque directo")
  (shape '(60 150 370 150 370 220 60 220))
  (setq y 110)
  (foreach row '(("Instalação" "Casa de bombas") ("Quadro" "QCM") ("Tensão de comando" "24 V")
                 ("Norma dos símbolos" "IEC 60617") ("Data" "2026-08-17"))
    (text 110 y 4 (car row))
    (text 215 y 4 (cadr row))
    (wire (list 105 (- y 2) 325 (- y 2)) 8)
    (setq y (- y 8))))

(defun index-row (y cells / places)
  (setq places '(65 105 150 310))
  (foreach cell cells
    (if (/= cell "") (text (car places) y 3.5 cell))
    (setq places (cdr places))))

(defun index ( / bottom row y)
  (setq bottom (- 235 (* 10 (length pages))))
  (centred 215 255 8 "ÍNDICE")
  (shape (list 60 bottom 370 bottom 370 245 60 245))
  (foreach cell '((65 "Página") (105 "Folha") (150 "Descrição") (310 "Grupo"))
    (text (car cell) 237.5 4 (cadr cell)))
  (setq row 0)
  (foreach entry pages
    (setq row (1+ row) y (- 238 (* 10 row)))
    (wire (list 60 (+ y 7) 370 (+ y 7)) 8)
    (index-row y (cons (itoa row) entry))))

; --- The power circuit ---

(defun power-terminal (x y strip number target)
  (insert "BOR-PASSAGEM" x y (list "REGUA" strip "NUMERO" number "RELACAO" strip "LIGACAO" target)))

(defun phase (name x line load pin)
  (centred x 276.5 3 name)
  (foreach ends '((275 270) (265 245) (225 205) (185 165) (150 130) (125 110))
    (wire (list x (car ends) x (cadr ends)) power-colour))
  (power-terminal x 270 "X1" line (strcat "Q1:" name))
  (power-terminal x 130 "X1" load (strcat "M1:" pin)))

(defun earth ()
  (centred 165 276.5 3 "PE")
  (foreach points '((165 275 165 270) (165 265 165 130) (165 125 165 90 150 90))
    (wire points earth-colour))
  (power-terminal 165 270 "X1" "PE1" "PE")
  (power-terminal 165 130 "X1" "PE2" "M1:PE"))

(defun main-contacts ( / number e)
  (setq number 0)
  (foreach x '(120 130 140)
    (setq e (insert "NA-POTENCIA" x 205
                    (list "RELACAO" "K1" "ID_PINO" (strcat (itoa (1+ (* 2 number))) "-" (itoa (+ 2 (* 2 number))))
                          "POSICAO_CTT" (itoa (1+ number)))))
    (if (> number 0) (command "_LMVISIBILITY" e "" "Hide" "RELACAO" ""))
    (setq contacts-of-k1 (append contacts-of-k1 (list e)) number (1+ number))))

(defun power-devices ( / pins)
  (foreach number '(1 2 3 4 5 6)
    (setq pins (append pins (list (strcat "LIGACAO" (itoa number)) (itoa number)))))
  (component "Q1" (insert "DISJUNTOR_MOTOR" 120 245 (append (parts "Q1" "+QCM") pins)) "Q")
  (main-contacts)
  (component "F1" (insert "RELE_TERMICO" 120 165 (parts "F1" "+QCM")) "F")
  (component "M1" (insert "MOTOR_TRIFASICO" 120 110
                          (append (parts "M1" "+CAMPO") '("POTENCIA" "5,5 kW" "CORRENTE" "11,2 A"))) "M"))

(defun supply-of-control ()
  (wire '(120 258 250 258 250 245) power-colour)
  (wire '(130 252 240 252 240 245) power-colour)
  (node 120 258)
  (node 130 252)
  (component "F2" (insert "FUSIVEL_2P" 240 245 (append (parts "F2" "+QCM") '("CORRENTE" "2 A"))) "F")
  (component "T1" (insert "TRAFO_COMANDO" 240 215 (append (parts "T1" "+QCM") '("TENSAO" "400 / 24 V"))) "T")
  (foreach pole '((240 "1" "L+") (250 "2" "M"))
    (wire (list (car pole) 225 (car pole) 215) power-colour)
    (wire (list (car pole) 185 (car pole) 175) control-colour)
    (power-terminal (car pole) 175 "X2" (cadr pole) (strcat "T1:" (caddr pole)))
    (wire (list (car pole) 170 (car pole) 153) control-colour))
  (on "$DE" "DE_PAGINA" 240 150 '("DE" "P03" "PAGINA" "P04")))

(defun power-labels ( / e)
  (foreach entry '((120 235 "1L1" "Q1") (130 235 "1L2" "Q1") (140 235 "1L3" "Q1") (120 195 "2L1" "F1")
                   (130 195 "2L2" "F1") (140 195 "2L3" "F1"))
    (setq e (insert-on page "ANILHA_FIO" (car entry) (- (cadr entry) 22) 90 (list "FIO" (caddr entry))))
    (change (entnext e) '(62 . 2))
    (mark e "TVO_RZ_ANILHAFIO" (list (handle (schematic (cadddr entry))))))
  (setq e (insert "ANILHA_CABO" 165 115 '("CABO" "W1 4 × 2,5 mm²" "DISTANCIA" "35")))
  (mark e "TVO_RZ_ANILHACABO" (list (handle (schematic "M1")))))

(defun power ()
  (text 70 276.5 3 "3 × 400 V, 60 Hz")
  (phase "L1" 120 "1" "4" "U1")
  (phase "L2" 130 "2" "5" "V1")
  (phase "L3" 140 "3" "6" "W1")
  (earth)
  (power-devices)
  (supply-of-control)
  (power-labels))

; --- The control circuit ---

(defun blue (numbers) (wire numbers control-colour))

(defun control-supply ()
  (foreach rail '((265 "1" "24 V") (90 "2" "0 V"))
    (text 40 (+ (car rail) 3) 3 (caddr rail))
    (insert "BOR-CONTROL" 60 (car rail) (list "STRIP" "X2" "NUMBER" (cadr rail) "CONNECTION" "T1")))
  (blue '(65 265 90 265))
  (component "F3" (insert-on page "FUSE_1P" 90 265 90 (append (english-parts "F3" "+QCM") '("CURRENT" "4 A"))) "F")
  (blue '(110 265 330 265))
  (blue '(65 90 330 90)))

(defun auxiliary (x y pins position)
  (insert "NA-AUX" x y (list "TAG" "K1" "ID_PIN" pins "POSITION_CTT" position)))

(defun control-start ( / y)
  (blue '(120 265 120 255))
  (node 120 265)
  (setq contacts-of-f1
    (list (insert "NAF-OVERLOAD" 120 255 '("TAG" "F1" "ID_PIN" "95-96-98" "POSITION_CTT" "1"))))
  (blue '(120 235 120 225))
  (component "S0" (insert "BT-STOP" 120 225 (append (english-parts "S0" "+CAMPO") '("ID_PIN" "11-12"))) "S")
  (blue '(120 205 120 195))
  (component "S1" (insert "BT-START" 120 195 (append (english-parts "S1" "+CAMPO") '("ID_PIN" "13-14"))) "S")
  (foreach points '((120 175 120 150) (120 200 160 200 160 195) (160 175 160 165 120 165)) (blue points))
  (node 120 200)
  (node 120 165)
  (setq contacts-of-k1 (append contacts-of-k1 (list (auxiliary 160 195 "13-14" "4"))))
  (component "K1" (insert "CONTACTOR_COIL" 120 150
                          (append (english-parts "K1" "+QCM")
                                  '("CONNECTION1" "A1" "CONNECTION2" "A2" "VOLTAGE" "24 VDC"))) "K")
  (blue '(120 130 120 90))
  (node 120 90)
  (setq y 78)
  (foreach value '("1-2  P03" "3-4  P03" "5-6  P03" "13-14  P04" "23-24  P04")
    (text 112 y 2.2 value)
    (setq y (- y 4))))

(defun signal-lamp (x tag colour title / e)
  (setq e (component tag (insert "LAMP" x 150 (append (english-parts tag "+QCM") (list "COLOUR" colour))) "H"))
  (command "_LMCIRCUIT" "Set" e 1)
  (blue (list x 130 x 90))
  (node x 90)
  (centred x 80 3 title))

(defun control ()
  (control-supply)
  (control-start)
  (blue '(200 265 200 195))
  (node 200 265)
  (setq contacts-of-k1 (append contacts-of-k1 (list (auxiliary 200 195 "23-24" "5"))))
  (blue '(200 175 200 150))
  (blue '(130 235 130 230 250 230 250 150))
  (signal-lamp 200 "H1" "green" "Motor running")
  (signal-lamp 250 "H2" "yellow" "Overload"))

; --- The terminal plan ---

(defun strip-colour (strip name)
  (cond ((= name "PE") earth-colour) ((= strip "X1") power-colour) (control-colour)))

(defun terminal (strip x number connection name cable target / colour)
  (setq colour (strip-colour strip name))
  (insert "BOR-REGLETA" x 170 (list "NUMERO" number "REGLETA" strip "ETIQUETA" strip "CONEXION" connection
                                    "ALAMBRE" name "CABLE" cable "DESTINO" target))
  (wire (list (+ x 6) 200 (+ x 6) 202) colour)
  (wire (list (+ x 9) 170 (+ x 9) 120) colour)
  (turned-text (+ x 6) 112 2.2 target 270))

(defun strip (name x rows)
  (text x 250 5 (strcat "Regleta " name))
  (foreach row rows
    (apply 'terminal (append (list name x) row))
    (setq x (+ x 14))))

(defun terminals ()
  (strip "X1" 60 '(("1" "Q1:1" "1L1" "W0" "L1") ("2" "Q1:3" "1L2" "W0" "L2") ("3" "Q1:5" "1L3" "W0" "L3")
                   ("4" "F1:2" "2L1" "W1" "M1:U1") ("5" "F1:4" "2L2" "W1" "M1:V1")
                   ("6" "F1:6" "2L3" "W1" "M1:W1") ("PE1" "PE" "PE" "W0" "PE") ("PE2" "PE" "PE" "W1" "M1:PE")))
  (strip "X2" 220 '(("1" "T1:L+" "24" "W2" "S0:11") ("2" "T1:M" "0" "W2" "H1:2") ("3" "K1:13" "13" "W2" "S1:13")
                    ("4" "K1:14" "14" "W2" "S1:14")))
  (turned-text 40 224 2.5 "Interno" 90)
  (turned-text 40 135 2.5 "Externo" 90))

; --- The single-line diagram and the panel ---

(defun single-line ()
  (centred 135 262 3 "3 × 400 V, 60 Hz")
  (wire '(100 255 170 255) power-colour)
  (wire '(135 255 135 245) power-colour)
  (foreach entry '(("Q1" "UNI_DISJUNTOR" 245) ("K1" "UNI_CONTATOR" 215) ("F1" "UNI_RELE" 185) ("M1" "UNI_MOTOR" 155))
    (link-single-line (car entry) (insert (cadr entry) 135 (caddr entry) (list "RELACAO" (car entry))))
    (text 165 (- (caddr entry) 11) 3 (cadr (assoc (car entry) makers)))
    (if (/= (car entry) "M1") (wire (list 135 (- (caddr entry) 20) 135 (- (caddr entry) 30)) power-colour))))

(defun mounting-rail (y / e)
  (setq e (insert "TRILHO_35" 90 y '("COMPRIMENTO" "200")))
  (change e '(62 . 8))
  e)

(defun panel ( / upper lower)
  (shape '(60 60 330 60 330 270 60 270))
  (shape '(80 70 310 70 310 260 80 260))
  (centred 195 273 3.5 "QCM 400 × 300 × 200")
  (setq upper (mounting-rail 205) lower (mounting-rail 112))
  (foreach entry (list (list "Q1" "LAY_BREAKER" 95 180 upper) (list "K1" "LAY_CONTACTOR" 150 180 upper)
                       (list "F1" "LAY_OVERLOAD" 205 180 upper) (list "T1" "LAY_TRANSFORMER" 95 85 lower))
    (link-footprint (car entry)
                    (insert (cadr entry) (caddr entry) (cadddr entry) (english-parts (car entry) "+QCM"))
                    (nth 4 entry))))

; --- What no page shows ---

(defun settings ( / carrier version)
  (setq carrier (entmakex '((0 . "POINT") (8 . "RZ_FREEZE") (10 0.0 0.0 0.0))))
  (foreach entry '(("RZ_NUM_PAG" "1") ("RZ_ORDEM_GRU" "1") ("RZ_ORDEM_PAG_MOTOR" "1") ("RZ_ORDEM_PAG_BORNES" "2")
                   ("RZ_ORDEM_PAG_PAINEL" "1")
                   ("TVO_RZ_PAINEL" "QCM" "Quadro de comando do motor" "CAMPO" "Instalação em campo")
                   ("TVO_RZ_CFG" "motor-starter.cfg"))
    (mark carrier (car entry) (cdr entry)))
  (setq version (entmakex '((0 . "DICTIONARY") (100 . "AcDbDictionary"))))
  (dictadd (namedobjdict) "RZ_VERSAO" version)
  (mark version "RZ_VERSAO" '("26.8" "26.8.17")))

; Spare parts and a device of another supplier.
(defun virtual-components ()
  (command "_LMVIRTUAL" "New" "V1" "SENSOR_NIVEL" "RELACAO" "B1" "No" "DESCRICAO" "Sensor de nível do poço" "No"
           "NUMERO" "1" "No" "LOCAL" "+CAMPO" "No" "FABRICANTE" "" "No" "CODIGO" "SN-4" "Yes" "")
  (command "_LMVIRTUAL" "New" "V2" "SPARE_FUSE" "TAG" "F9" "No" "DESCRIPTION" "Spare fuses 4 A, set of 10" "No"
           "PARTNO" "CF-4" "Yes" "")
  (command "_LMVIRTUAL" "New" "V3" "BOR-RESERVA" "ETIQUETA" "X3" "No" "REGLETA" "X3" "No" "NUMERO" "1" "No" ""))

; --- The project ---

(progn
  (setq components nil contacts-of-k1 nil contacts-of-f1 nil)
  (layers)
  (sheets)
  (setq number 0)
  (foreach draw '(cover index power control terminals single-line panel)
    (setq number (1+ number))
    (go-to number)
    (apply draw nil))
  (link-contacts "K1" contacts-of-k1)
  (link-contacts "F1" contacts-of-f1)
  (settings)
  (virtual-components)
  (command "_ZOOM" "Extents")
  (princ))
