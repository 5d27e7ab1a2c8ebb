(vl-sort '(5 3 8 1 9 2 7 4) '(lambda (a b) t)) (vl-sort-i '(5 3 8 1) '(lambda (a b) (setq n (not n))))
