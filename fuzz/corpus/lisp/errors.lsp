(setq caught (vl-catch-all-apply '/ '(1 0))) (vl-catch-all-error-p caught)
(vl-catch-all-error-message caught)
(defun *error* (msg) (setq said msg) (princ))
(undefined-thing 5)
said
(setq *error* nil)
(strcat "a" nil)
(caddr 7)
