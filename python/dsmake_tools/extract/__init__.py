"""The text of mails, archives and documents, for programs that scan texts."""
