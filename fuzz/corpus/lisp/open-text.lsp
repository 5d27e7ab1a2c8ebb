(setq a "no end
