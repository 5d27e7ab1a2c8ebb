(list (rtos 1e300 4 8) (rtos -1e-300 1 16) (angtos 1e20 4 8) (distof "1'-1/0\"" 4) (angtof "N 45d W" 4))
