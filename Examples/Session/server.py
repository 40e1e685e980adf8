"""A merchant's server with TLS and two accounts: acc-1 answers, slow never does."""
import http.server
import ssl
import threading


class Server(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        if self.path.endswith("/slow"):
            threading.Event().wait()
        body = b'{"account_id": "acc-1", "account_status": "ENABLED"}'
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Server)
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain("certificate.pem", "key.pem")
server.socket = context.wrap_socket(server.socket, server_side=True)
print(f"https://127.0.0.1:{server.server_port}", flush=True)
server.serve_forever()
