;| a note |; (+ 1 1) ; behind it
(setq 2-wire "yes" wire# 4 a_b 5) (list 2-wire wire# a_b)
(SetQ MiXed 1) (list mixed MIXED)
'(a . (b . (c . nil)))
(quote |x|)
