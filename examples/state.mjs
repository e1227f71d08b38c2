// Reads the session's state twice: waiting for the record, and by a callback. The daemon's port may be given.
//
//     npm install koffi
//     node state.mjs "$(pkg-config --variable=abi kelvarissdk)" [PORT]
import { readFileSync } from "node:fs";
import koffi from "koffi";

const abi = JSON.parse(readFileSync(process.argv[2]));
const library = koffi.load(abi.library);

// The types are made from what the compiler saw in the headers. A record that came out otherwise would be read wrongly.
for (const name of Object.keys(abi.enumerations)) {
  koffi.alias(name, "uint32_t");
}
const types = { pointer: "void *" };
for (const [name, record] of Object.entries(abi.records)) {
  const members = {};
  for (const { name: field, type, dimensions = [] } of record.fields) {
    members[field] = dimensions.reduceRight((element, count) => koffi.array(element, count), types[type] ?? type);
  }
  types[name] = koffi.struct(name, members);
  const misplaced = record.fields.some(({ name: field, offset }) => koffi.offsetof(types[name], field) !== offset);
  if (misplaced || koffi.sizeof(types[name]) !== record.size) throw new Error(`${name} has another layout`);
}
koffi.opaque("KelvarisSDK_Handle");
const StateCallback = koffi.proto("bool StateCallback(KelvarisSDK_StateResult result, void *userData)");

const initialize = library.func("void KelvarisSDK_InitializeCreateSettings(_Out_ KelvarisSDK_CreateSettings *settings)");
const create = library.func("KelvarisSDK_Handle *KelvarisSDK_CreateWithSettings(KelvarisSDK_CreateSettings settings)");
const destroy = library.func("void KelvarisSDK_Destroy(KelvarisSDK_Handle *sdk)");
const getState = library.func(
  "KelvarisSDK_StateResult KelvarisSDK_GetState(KelvarisSDK_Handle *sdk, StateCallback *callback, void *userData)",
);
const stateText = library.func("const char *KelvarisSDK_State_toString(KelvarisSDK_State state)");
const errorText = library.func("const char *KelvarisSDK_ErrorType_toString(KelvarisSDK_ErrorType type)");

function show(result) {
  if (result.base.error) throw new Error(`${errorText(result.base.errorCode)}: ${result.base.errorMessage}`);
  console.log(stateText(result.state));
}

const settings = {};
initialize(settings);
if (process.argv[3]) settings.port = Number(process.argv[3]);
const sdk = create(settings);
show(getState(sdk, null, null));

// It runs on Node's thread while the library's waits, so nothing that blocks Node may wait for the library meanwhile.
// Node doesn't stay for it by itself.
const awake = setInterval(() => {}, 1000);
const callback = await new Promise((resolve) => {
  const registered = koffi.register((result) => {
    show(result);
    resolve(registered);
    return false; // ends the subscription
  }, koffi.pointer(StateCallback));
  const started = getState(sdk, registered, null);
  if (started.base.error) show(started);
});
clearInterval(awake);
destroy.async(sdk, () => koffi.unregister(callback));
