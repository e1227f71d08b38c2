"""The Kelvaris client library in Python."""
