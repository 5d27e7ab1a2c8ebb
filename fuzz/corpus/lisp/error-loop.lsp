(defun *error* (m) (while t)) (car 5)
