// What one would write in a script: the exchange of a run of "sdkcli state".
// node state.mjs PORT run | node state.mjs PORT loop COUNT, which prints round trips a second.
import WebSocket from "ws";

const [port, mode, count] = process.argv.slice(2);
const request = (name, payload) => JSON.stringify([name, payload, "kelvaris_sdk"], null, "\t") + "\n";
const socket = new WebSocket(`ws://127.0.0.1:${port}/`, "event-protocol", { perMessageDeflate: false });

let left = mode === "loop" ? Number(count) : 0;
let start;

socket.on("open", () => {
  socket.send(request("set_app_name", { name: "Kelvaris" }));
  socket.send(request("request_current_state", null));
});
socket.on("error", (error) => {
  console.error(error.message);
  process.exit(1);
});
socket.on("message", (data) => {
  const [, payload] = JSON.parse(data);
  start ??= performance.now();
  if (left-- > 0) {
    socket.send(request("request_current_state", null));
    return;
  }
  if (mode === "loop") {
    console.log((Number(count) / (performance.now() - start)) * 1000);
  } else {
    console.log(JSON.stringify({ state: payload.state }, null, "\t"));
  }
  socket.terminate();
});
