; SPDX-License-Identifier: MIT
; The symbols of the sample project, in millimetres, connections at the top and at the bottom. (symbol NAME)
; draws one in the current drawing, which must be new; symbols.scr makes a file of each.
;
; Three libraries on purpose: the power circuit comes from a Portuguese one, the control circuit from an
; English one and the terminal plan from a Spanish one, so the same role stands under three tags. A symbol
; file has everything on layer "0" and no blocks.

(setq portuguese 0 english 1 spanish 2)

; Role, then tag and prompt in each language.
(setq roles
  '((tag ("RELACAO" . "Identificação do componente") ("TAG" . "Component tag")
         ("ETIQUETA" . "Identificación del componente"))
    (number ("NUMERO" . "Número do borne") ("NUMBER" . "Terminal number") ("NUMERO" . "Número del borne"))
    (pin ("ID_PINO" . "Pinos do contato") ("ID_PIN" . "Pins of the contact") ("ID_PIN" . "Pines del contacto"))
    (strip ("REGUA" . "Régua de bornes") ("STRIP" . "Terminal strip") ("REGLETA" . "Regleta de bornes"))
    (connection ("LIGACAO" . "Ligação") ("CONNECTION" . "Connection") ("CONEXION" . "Conexión"))
    (position ("POSICAO_CTT" . "Posição do contato") ("POSITION_CTT" . "Position of the contact")
              ("POSICION_CTT" . "Posición del contacto"))
    (cable ("CABO" . "Cabo") ("CABLE" . "Cable") ("CABLE" . "Cable"))
    (wire ("FIO" . "Número do fio") ("WIRE" . "Wire number") ("ALAMBRE" . "Número del hilo"))
    (distance ("DISTANCIA" . "Comprimento em metros") ("DISTANCE" . "Length in metres")
              ("DISTANCIA" . "Longitud en metros"))
    (description ("DESCRICAO" . "Descrição") ("DESCRIPTION" . "Description") ("DESCRIPCION" . "Descripción"))
    (maker ("FABRICANTE" . "Fabricante") ("MANUFACTURER" . "Manufacturer") ("FABRICANTE" . "Fabricante"))
    (order ("CODIGO" . "Código de compra") ("PARTNO" . "Order code") ("CODIGO" . "Código de compra"))
    (place ("LOCAL" . "Local de montagem") ("LOCAL" . "Place of installation") ("LOCAL" . "Lugar de montaje"))))

; --- Geometry, all of it on layer "0": a reference gives it its own layer's colour, or its own with "own-colour" ---

(setq own-colour nil)

(defun radians (degrees) (/ (* pi degrees) 180.0))
(defun at (code x y) (list code (float x) (float y) 0.0))
(defun head (kind) (append (list (cons 0 kind) '(8 . "0")) (if own-colour '((62 . 0)))))

(defun line (x1 y1 x2 y2)
  (entmake (append (head "LINE") (list (at 10 x1 y1) (at 11 x2 y2)))))

; A mechanical link: dashes of 2 with gaps of 1, from left to right. They are lines of their own, since a line
; type made by a program has no pattern.
(defun dashed (x1 y x2)
  (while (< x1 x2)
    (line x1 y (min (+ x1 2) x2) y)
    (setq x1 (+ x1 3))))

; Lines through points, given as x y x y and so on.
(defun path (numbers)
  (while (cddr numbers)
    (line (car numbers) (cadr numbers) (caddr numbers) (cadddr numbers))
    (setq numbers (cddr numbers))))

(defun box (x1 y1 x2 y2)
  (path (list x1 y1 x2 y1 x2 y2 x1 y2 x1 y1)))

(defun circle (x y radius)
  (entmake (append (head "CIRCLE") (list (at 10 x y) (cons 40 (float radius))))))

(defun arc (x y radius from to)
  (entmake (append (head "ARC") (list (at 10 x y) (cons 40 (float radius)) (cons 50 (radians from))
                                      (cons 51 (radians to))))))

; What texts and attributes share. Of the modes, "upright" turns by 90 degrees and "centred" needs a second point.
(defun body (x y height value modes)
  (append (list (at 10 x y) (cons 40 (float height)) (cons 1 value)
                (cons 50 (if (member 'upright modes) (radians 90) 0.0)) '(7 . "Standard"))
          (if (member 'centred modes) (list '(72 . 1) (at 11 x y)))))

(defun label (x y height value modes)
  (entmake (append (head "TEXT") (body x y height value modes))))

; An attribute definition. A text among the modes is its default; "hidden" makes it invisible.
(defun att (tag prompt x y height modes / default)
  (setq default (car (vl-remove-if-not '(lambda (mode) (= (type mode) 'STR)) modes)))
  (entmake (append (head "ATTDEF") (body x y height (if default default "") modes)
                   (list (cons 3 prompt) (cons 2 tag) (cons 70 (if (member 'hidden modes) 1 0))))))

; The attribute of a role; its tag and its prompt depend on the language.
(defun give (language role x y height modes / names)
  (setq names (nth (1+ language) (assoc role roles)))
  (att (car names) (cdr names) x y height modes))

; What a parts list needs and no reader of the sheet does.
(defun order-data (language x y)
  (foreach role '(description maker order place)
    (give language role x y 2 '(hidden))
    (setq y (- y 3))))

(defun leads (x) (line x 0 x -7) (line x -13 x -20))
(defun open-contact (x) (leads x) (line x -13 (- x 3.5) -6.5))
(defun closed-contact (x) (leads x) (line x -7 (+ x 3) -7) (line x -13 (+ x 3) -6))

; --- The sheet ---

(defun frame-a3 ( / column row left top)
  (box 0 0 420 297)
  (box 20 10 410 287)
  (setq column 0)
  (repeat 8
    (setq left (+ 20 (* column 48.75)))
    (label (+ left 24.4) 290.5 3 (itoa (1+ column)) '(centred))
    (if (> column 0) (line left 287 left 297))
    (setq column (1+ column)))
  (setq row 0)
  (repeat 6
    (setq top (- 287 (* row 46.1667)))
    (label 15 (- top 24.5) 3.5 (substr "ABCDEF" (1+ row) 1) '(centred))
    (if (> row 0) (line 10 top 20 top))
    (setq row (1+ row)))
  (att "FORMATO" "Formato da folha" 402 291 2.5 '("A3" hidden)))

(defun title-block ()
  (box 0 0 180 40)
  (foreach numbers '((0 30 180 30) (0 20 180 20) (0 10 180 10) (110 0 110 20) (145 0 145 20) (110 30 110 40))
    (path numbers))
  (foreach cell '(("NOME" "Projeto" 2 30) ("LOCAL" "Instalação" 112 30)
                  ("DESCRICAO" "Descrição da página" 2 20) ("FUNCAO" "Projetista" 2 10) ("DATA" "Data" 112 10)
                  ("GRUPO" "Grupo" 2 0) ("PAGINA" "Página" 112 0) ("TOTAL" "Total de páginas" 147 0)
                  ("REVISAO" "Revisão" 147 10))
    (label (caddr cell) (+ (cadddr cell) 7.2) 1.6 (cadr cell) nil)
    (att (car cell) (cadr cell) (caddr cell) (+ (cadddr cell) 2.2) 3 nil)))

(defun page-link ()
  (path '(0 3 14 3 18 0 14 -3 0 -3 0 3))
  (att "DE" "Página de origem" 2 -1.2 2.5 nil)
  (att "PAGINA" "Página de destino" 20 -1.2 2.5 nil))

(defun page-mark ()
  (circle 0 0 6)
  (att "PAGINA" "Número da página" 0 -2 4 '(centred)))

(defun node () (setq own-colour t) (circle 0 0 0.8) (circle 0 0 0.5) (circle 0 0 0.25))

; --- The power circuit: Portuguese ---

(defun power-terminal ()
  (line 0 0 0 -1.3)
  (circle 0 -2.5 1.2)
  (line 0 -3.7 0 -5)
  (give portuguese 'strip 1.8 -0.6 1.8 nil)
  (give portuguese 'number 1.8 -3.2 2 nil)
  (give portuguese 'tag 1.8 -6 1.8 '(hidden))
  (give portuguese 'connection 1.8 -8 1.8 '(hidden)))

(defun motor-breaker ( / pin)
  (foreach x '(0 10 20)
    (open-contact x)
    (line (1- x) -6 (1+ x) -8)
    (line (1- x) -8 (1+ x) -6)
    (arc (+ x 2.2) -16.5 1.2 90 270))
  (dashed -13 -10 18)
  (line -13 -8 -13 -12)
  (give portuguese 'tag -32 -9 3.5 nil)
  (setq pin 1)
  (foreach x '(0 10 20)
    (att (strcat "LIGACAO" (itoa pin)) "Ligação de entrada" (1+ x) -3.5 1.8 nil)
    (att (strcat "LIGACAO" (itoa (1+ pin))) "Ligação de saída" (1+ x) -19.9 1.8 nil)
    (setq pin (+ pin 2)))
  (order-data portuguese -32 -14))

(defun power-contact ()
  (open-contact 0)
  (arc 0 -6 1 270 90)
  (give portuguese 'tag -14 -9 3 nil)
  (give portuguese 'pin 1 -17 1.8 nil)
  (give portuguese 'position 1 -20 1.8 '(hidden)))

(defun thermal-relay ()
  (box -5 -3 25 -12)
  (foreach x '(0 10 20)
    (path (list x 0 x -5 (+ x 3) -5 (+ x 3) -10 x -10 x -15)))
  (give portuguese 'tag -32 -9 3.5 nil)
  (order-data portuguese -32 -14))

(defun motor ()
  (circle 10 -20 12)
  (path '(10 0 10 -8))
  (path '(0 0 0 -6 3.6 -9.8))
  (path '(20 0 20 -6 16.4 -9.8))
  (line 22 -20 30 -20)
  (label 10 -20 6 "M" '(centred))
  (label 10 -27 4 "3~" '(centred))
  (give portuguese 'tag -17 -20 3.5 nil)
  (att "POTENCIA" "Potência" -17 -25 2.5 nil)
  (att "CORRENTE" "Corrente nominal" -17 -29 2.5 nil)
  (order-data portuguese -17 -33))

(defun fuse-two-poles ()
  (foreach x '(0 10) (line x 0 x -20) (box (- x 2) -5 (+ x 2) -15))
  (give portuguese 'tag 14 -9 3.5 nil)
  (att "CORRENTE" "Corrente nominal" 14 -14 2.5 nil)
  (order-data portuguese 14 -18))

(defun transformer ()
  (foreach x '(0 10) (line x 0 x -6) (line x -24 x -30))
  (circle 5 -11.5 7)
  (circle 5 -18.5 7)
  (line 0 -6 1 -6.8)
  (line 10 -6 9 -6.8)
  (line 0 -24 1 -23.2)
  (line 10 -24 9 -23.2)
  (give portuguese 'tag 16 -12 3.5 nil)
  (att "TENSAO" "Tensões" 16 -17 2.5 nil)
  (order-data portuguese 16 -21))

(defun wire-label () (give portuguese 'wire 0 0.8 2 '(centred)))

(defun cable-label ()
  (path '(0 0 6 3 6 6 40 6 40 0 6 0 6 3))
  (give portuguese 'cable 8 3.4 2 nil)
  (give portuguese 'distance 8 0.6 2 nil))

; --- The control circuit: English ---

(defun fuse-one-pole ()
  (line 0 0 0 -20)
  (box -2 -5 2 -15)
  (give english 'tag 4 -9 3.5 nil)
  (att "CURRENT" "Rated current" 4 -14 2.5 nil)
  (order-data english 4 -18))

(defun changeover-contact ()
  (line 0 0 0 -7)
  (line 0 -7 -3.5 -13.5)
  (path '(0 -20 0 -13 -3.5 -13))
  (path '(10 -20 10 -13 4 -13))
  (give english 'tag -14 -9 3.5 nil)
  (give english 'pin 2 -5 2 nil)
  (give english 'position 2 -9 2 '(hidden)))

(defun auxiliary-contact ()
  (open-contact 0)
  (give english 'tag 2 -8 3.5 nil)
  (give english 'pin 2 -13 2 nil)
  (give english 'position 2 -17 2 '(hidden)))

(defun push-button (closed)
  (if closed (closed-contact 0) (open-contact 0))
  (dashed -8 -10 (if closed 1.5 -1.7))
  (path '(-6.5 -7.5 -8 -7.5 -8 -12.5 -6.5 -12.5))
  (give english 'tag -20 -9 3.5 nil)
  (give english 'pin 4 -13 2 nil)
  (order-data english -20 -14))

(defun coil ()
  (line 0 0 0 -6)
  (box -6 -6 6 -14)
  (line 0 -14 0 -20)
  (give english 'tag -18 -11 3.5 nil)
  (att "CONNECTION1" "First connection" 1 -3 2 nil)
  (att "CONNECTION2" "Second connection" 1 -18 2 nil)
  (att "VOLTAGE" "Coil voltage" 8 -11 2.5 nil)
  (order-data english -18 -16))

(defun lamp ()
  (line 0 0 0 -6)
  (circle 0 -10 4)
  (line 0 -14 0 -20)
  (line -2.83 -7.17 2.83 -12.83)
  (line -2.83 -12.83 2.83 -7.17)
  (give english 'tag 6 -9 3.5 nil)
  (att "COLOUR" "Colour" 6 -14 2.5 nil)
  (order-data english 6 -18))

(defun control-terminal ()
  (line 0 0 1.3 0)
  (circle 2.5 0 1.2)
  (line 3.7 0 5 0)
  (give english 'strip -1 2.2 2 nil)
  (give english 'number 4 2.2 2 nil)
  (give english 'connection -1 -4.5 2 '(hidden)))

; --- The terminal plan: Spanish ---

(defun strip-terminal ()
  (box 0 0 12 30)
  (path '(0 22 12 22))
  (path '(0 8 12 8))
  (circle 6 15 2.5)
  (give spanish 'number 6 24 3.5 '(centred))
  (give spanish 'strip 6 3 2 '(centred))
  (give spanish 'tag 6 18.5 1.8 '(hidden))
  (give spanish 'connection 7 34 2.2 '(upright))
  (give spanish 'wire 7 -20 2.2 '(upright))
  (give spanish 'cable 7 -40 2.2 '(upright))
  (att "DESTINO" "Conexión externa" 3 -40 2.2 '(upright hidden)))

; --- The single-line diagram ---

(defun single-breaker () (open-contact 0) (line -1 -6 1 -8) (line -1 -8 1 -6) (line -2 -1 2 -4))
(defun single-contactor () (open-contact 0) (arc 0 -6 1 270 90))
(defun single-relay () (box -5 -4 5 -16) (path '(0 0 0 -7 3 -7 3 -13 0 -13 0 -20)))
(defun single-motor () (line 0 0 0 -4) (circle 0 -12 8) (label 0 -13 4 "M" '(centred)))
(defun single-line (draw) (apply draw nil) (give portuguese 'tag 10 -11 3.5 nil))

; --- The panel ---

(defun footprint (width height)
  (box 0 0 width height)
  (box 2 2 (- width 2) (- height 2))
  (give english 'tag (/ width 2.0) (- height 9) 3.5 '(centred))
  (order-data english 1 -4))

(defun rail ()
  (setq own-colour t)
  (box 0 0 200 7)
  (line 0 1.5 200 1.5)
  (line 0 5.5 200 5.5)
  (att "COMPRIMENTO" "Comprimento" 202 2 2.5 nil))

(setq symbols
  '(("FORMATO_A3" frame-a3) ("SELO_A3" title-block) ("DE_PAGINA" page-link) ("PAGINA_NUMERO" page-mark)
    ("BLK_CTR_PONTO" node) ("BOR-PASSAGEM" power-terminal) ("DISJUNTOR_MOTOR" motor-breaker)
    ("NA-POTENCIA" power-contact) ("RELE_TERMICO" thermal-relay) ("MOTOR_TRIFASICO" motor)
    ("FUSIVEL_2P" fuse-two-poles) ("TRAFO_COMANDO" transformer) ("ANILHA_FIO" wire-label)
    ("ANILHA_CABO" cable-label) ("FUSE_1P" fuse-one-pole) ("NAF-OVERLOAD" changeover-contact)
    ("NA-AUX" auxiliary-contact) ("BT-STOP" push-button t) ("BT-START" push-button nil)
    ("CONTACTOR_COIL" coil) ("LAMP" lamp) ("BOR-CONTROL" control-terminal) ("BOR-REGLETA" strip-terminal)
    ("UNI_DISJUNTOR" single-line single-breaker) ("UNI_CONTATOR" single-line single-contactor)
    ("UNI_RELE" single-line single-relay) ("UNI_MOTOR" single-line single-motor)
    ("LAY_BREAKER" footprint 45 65) ("LAY_CONTACTOR" footprint 45 60) ("LAY_OVERLOAD" footprint 45 50)
    ("LAY_TRANSFORMER" footprint 70 65) ("TRILHO_35" rail)))

(defun symbol (name / entry)
  (setq entry (assoc name symbols))
  (apply (cadr entry) (cddr entry))
  (princ))
