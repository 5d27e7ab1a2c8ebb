(setq e (entmakex '((0 . "LINE") (8 . "P1") (10 1 2 3) (11 4 5 6) (62 . 1))))
(entmod (subst '(62 . 3) '(62 . 1) (entget e)))
(entdel e) (entdel e) (ssget "X" '((0 . "LINE") (-4 . "<NOT") (62 . 1) (-4 . "NOT>"))) (tblnext "LAYER" t) (dictsearch (namedobjdict) "X")
