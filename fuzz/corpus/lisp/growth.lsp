(setq x "ab") (while t (setq x (strcat x x)))
