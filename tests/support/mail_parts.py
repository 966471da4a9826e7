"""Reads an e-mail file back as a mail program would (Python's email parser,
modern policy) and prints what it found as JSON: the decoded headers, the
text, and each attachment's name, type, size and SHA-256."""
import email
import email.policy
import hashlib
import json
import sys

with open(sys.argv[1], "rb") as f:
    msg = email.message_from_binary_file(f, policy=email.policy.default)

out = {"defects": [str(d) for d in msg.defects]}
for name in ("From", "To", "Cc", "Subject", "Date", "Message-ID", "X-Unsent"):
    value = msg.get(name)
    out[name.lower()] = str(value) if value is not None else None
out["header_names"] = list(msg.keys())
body = msg.get_body(preferencelist=("plain",))
out["body"] = body.get_content() if body is not None else None
out["attachments"] = []
for part in msg.iter_attachments():
    data = part.get_content()
    out["attachments"].append({
        "filename": part.get_filename(),
        "type": part.get_content_type(),
        "size": len(data),
        "sha256": hashlib.sha256(data).hexdigest(),
    })
json.dump(out, sys.stdout)
