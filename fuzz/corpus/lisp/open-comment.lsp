(+ 1 ;| no end
