;;; eglot.el --- a names file in Emacs with eglot -*- lexical-binding: t -*-
;; Run by Emacs: its diagnostics, a quick fix, a completed key, its layout.
;;   KZTNS=... emacs --batch -f package-activate-all -l eglot.el FILE

(require 'eglot)
(require 'flymake)

(defun check-stop (what)
  (message "emacs: %s" what)
  (kill-emacs 1))

(defmacro check-wait (what condition)
  `(let ((end (+ (float-time) 30)))
     (while (and (not ,condition) (< (float-time) end))
       (accept-process-output nil 0.05))
     (unless ,condition (check-stop (concat "no " ,what)))))

(define-derived-mode check-names-mode prog-mode "Names")
(add-to-list 'eglot-server-programs
             `(check-names-mode . (,(getenv "KZTNS") "lsp")))
(setq eglot-sync-connect 30
      eglot-confirm-server-initiated-edits nil
      eglot-events-buffer-size 0)

(defvar check-found nil "What was reported last.")

(defun check-has (code)
  (seq-some (lambda (diagnostic)
              (string-match-p (regexp-quote code) (flymake-diagnostic-text diagnostic)))
            check-found))

(defun check-line (number)
  (save-excursion
    (goto-char (point-min))
    (forward-line (1- number))
    (buffer-substring-no-properties (line-beginning-position) (line-end-position))))

(find-file (car command-line-args-left))
(setq command-line-args-left nil)
(check-names-mode)
(setq-local eldoc-mode nil)
(apply #'eglot--connect (eglot--guess-contact))
(check-wait "server" (eglot-managed-p))
;; In place of Flymake, which shows nothing in batch mode.
(eglot-flymake-backend (lambda (diagnostics &rest _) (setq check-found diagnostics)))
(check-wait "finding of SERVER" (check-has "unknown key SERVER"))
(message "diagnostics: %d" (length check-found))

(goto-char (point-min))
(search-forward "(SERVER")
(let* ((actions (eglot-code-actions (line-beginning-position) (line-end-position) "quickfix"))
       (action (seq-find (lambda (action) (string-match-p "unknown-key" (plist-get action :title)))
                         (if (vectorp actions) (append actions nil) actions))))
  (unless action (check-stop "no quick fix"))
  (eglot--apply-workspace-edit (plist-get action :edit)))
(check-wait "quick fix"
            (equal (check-line 2) "  (CONNECT_DATA = (SERVICE_NAME = sales)))"))
(message "quick fix: %s" (check-line 2))
(eglot--signal-textDocument/didChange)
(check-wait "end of the finding" (not (check-has "unknown key SERVER")))

(goto-char (point-min))
(forward-line 2)
(end-of-line)
(let* ((capf (eglot-completion-at-point))
       (table (nth 2 capf))
       (names (all-completions (buffer-substring (nth 0 capf) (nth 1 capf)) table
                               (plist-get (nthcdr 3 capf) :predicate)))
       (name (seq-find (lambda (name) (string-prefix-p "KZLB_CONNECT_TIMEOUT" name)) names)))
  (unless name (check-stop "no key to complete"))
  (delete-region (nth 0 capf) (nth 1 capf))
  (insert name)
  (funcall (plist-get (nthcdr 3 capf) :exit-function) name 'finished))
(check-wait "completed key"
            (string-suffix-p "(KZLB_CONNECT_TIMEOUT = " (check-line 3)))
(message "completed: %s" (check-line 3))

(insert "5))")
(eglot-format-buffer)
(check-wait "layout" (equal (check-line 1) "sales ="))
(message "laid out: %d lines" (count-lines (point-min) (point-max)))
(set-buffer-modified-p nil)
(eglot-shutdown (eglot-current-server))
(kill-emacs 0)
