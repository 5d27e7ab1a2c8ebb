(setq x (quote (1))) (repeat 60 (setq x (list x x))) x
