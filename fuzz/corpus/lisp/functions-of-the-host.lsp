(hostadd 20 22)
(hostechoes 'name "text" 100000 -1.5 '(8 . "PAG1") nil)
