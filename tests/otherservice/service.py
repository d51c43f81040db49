#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""An auction service in one short file, written from docs/protocol.md alone.

It shows that the description is enough to write another service from, and is no more than that: it
forgets everything when it ends. service.py [PORT]; it says where it listens.
"""
import datetime
import http.server
import sys
import urllib.parse

CATEGORIES = """number,name,parent
1,Animals,0
2,Art,0
3,News,0
4,People,0
5,Sports,0
6,Places,0
60,Cities,6
61,Nature,6
62,Monuments,6
"""
ALERTS = ("NotifyOnBid", "NotifyOnAuctionEnd", "NotifyOnView", "NotifyOnBuyerQuestion")
members = {}  # user name: the fields of its account, "alerts", and "auctions", the newest first
auctions = {}  # number: the parts of its upload


def form_fields(body):
    return dict(urllib.parse.parse_qsl(body.decode("ascii"), keep_blank_values=True))


def upload_parts(body, kind):
    parts = {}
    for part in body.split(b"--" + kind.partition("boundary=")[2].encode("ascii"))[1:-1]:
        header, _, value = part.removesuffix(b"\r\n").partition(b"\r\n\r\n")
        name = header.partition(b'name="')[2].partition(b'"')[0].decode("ascii")
        parts[name] = value if name == "MediaFile" else value.decode("latin-1")
    return parts


def create_account(fields):
    if fields["Username"] in members:
        return "ERROR: this user name is taken"
    members[fields["Username"]] = fields | {
        "Password": fields["Password1"], "number": str(len(members) + 1),
        "alerts": "1,1,0,1", "auctions": []}
    return members[fields["Username"]]["number"]


def modify_account(member, fields):
    member.update(fields, Password=fields["Password1"])
    return member["number"]


def set_alerts(member, fields):
    member["alerts"] = ",".join(fields[name] for name in ALERTS)
    return "1"


def create_auction(member, parts):
    auctions[str(len(auctions) + 1)] = parts
    member["auctions"].insert(0, str(len(auctions)))
    return "created"


def modify_auction(member, fields):
    auctions[fields["AuctionID"]].update(fields)
    return "changed"


def my_auctions(member, fields):
    end = (datetime.datetime.now() + datetime.timedelta(days=7)).strftime("%m/%d/%Y %H:%M")
    lines = ["number,title,start,reserve,buy,highest,end,fixed,views,bids,met"]
    for number in member["auctions"]:
        sold = auctions[number]
        lines.append(",".join([number, sold["Description"].replace(",", " "), sold["StartPrice"],
                               sold["ReservePrice"], sold["BuyItNowPrice"] or "0", "0", end,
                               "0", "0", "0", "-1"]))
    return "\n".join(lines)


FOR_EVERYBODY = {
    "GetServiceTerms": lambda fields: "<p>Be kind.</p>",
    "GetCountryList": lambda fields: "US,United States",
    "CreateAccount": create_account,
}
FOR_MEMBERS = {
    "ValidateLogin": lambda member, fields: "1",
    "GetCategoryList": lambda member, fields: CATEGORIES,
    "GetNotificationOptions": lambda member, fields: "bid,end,view,question\n" + member["alerts"],
    "SetNotificationOptions": set_alerts,
    "ModifyAccount": modify_account,
    "CreateAuction": create_auction,
    "GetMyAuctions": my_auctions,
}
FOR_SELLERS = {
    "GetThumbnail": lambda member, fields: auctions[fields["AuctionID"]]["MediaFile"],
    "GetRawMedia": lambda member, fields: auctions[fields["AuctionID"]]["MediaFile"],
    "ModifyAuction": modify_auction,
}


def answer(operation, fields):
    if operation in FOR_EVERYBODY:
        return FOR_EVERYBODY[operation](fields)
    member = members.get(fields.get("Username"))
    if member is None or member["Password"] != fields.get("Password"):
        return "0" if operation == "ValidateLogin" else "ERROR: wrong user name or password"
    if operation in FOR_SELLERS and fields.get("AuctionID") in member["auctions"]:
        return FOR_SELLERS[operation](member, fields)
    return FOR_MEMBERS.get(operation, lambda *_: "ERROR: no such thing")(member, fields)


class Service(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        body = self.rfile.read(int(self.headers["Content-Length"]))
        kind = self.headers["Content-type"]
        fields = upload_parts(body, kind) if kind.startswith("multipart/") else form_fields(body)
        result = answer(self.path.split("/")[2], fields)
        is_text = isinstance(result, str)
        content = result.encode() if is_text else result
        self.send_response(200)
        self.send_header("Content-Type", "text/plain" if is_text else "image/jpeg")
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    def log_message(self, *_):
        pass


service = http.server.HTTPServer(("127.0.0.1", int((sys.argv + ["0"])[1])), Service)
print(f"listening on 127.0.0.1:{service.server_port}", flush=True)
service.serve_forever()
