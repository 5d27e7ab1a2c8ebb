(while t (vl-catch-all-apply (quote (lambda () (while t)))))
