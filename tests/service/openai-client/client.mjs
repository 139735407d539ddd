// Uses a running service through the `openai` package, as any program would.
//
//   client.mjs FOLDER_OF_NODE_MODULES BASE_ADDRESS RECORDING   (the token is in OPENAI_API_KEY)
import assert from "node:assert/strict";
import fs from "node:fs";
import { createRequire } from "node:module";

const [folder, baseURL, recording] = process.argv.slice(2);
const OpenAI = createRequire(`${folder}/`)("openai");
const client = new OpenAI({ baseURL });

const models = [];
for await (const model of client.models.list()) models.push(model.id);
assert.deepEqual(models, ["pocketsphinx-en-us", "sayvane-rules"]);
const [speech, cleanup] = models;
assert.equal((await client.models.retrieve(speech)).id, speech);

const heard = (options) =>
  client.audio.transcriptions.create({ file: fs.createReadStream(recording), model: speech, ...options });
const plain = await heard({ prompt: "Names that may occur: Exposed", temperature: 0 });
assert.match(plain.text, /young man\.$/);
assert.equal(plain.usage.seconds, 3);
assert.match(await heard({ response_format: "text", language: "en" }), /young man\.\n$/);
const verbose = await heard({ response_format: "verbose_json" });
assert.equal(verbose.language, "english");
assert.ok(verbose.duration > 2.9 && verbose.duration < 3);

const messages = [
  { role: "system", content: "You are an editor." },
  { role: "user", content: "send it um tuesday" },
  { role: "assistant", content: "Send it Tuesday." },
  { role: "user", content: [{ type: "text", text: "ask maren scratch that ask tobin new paragraph thanks" }] },
];
const edited = "Ask tobin.\n\nThanks.";
const whole = await client.chat.completions.create({ model: cleanup, messages, temperature: 0.2, max_tokens: 4096 });
assert.equal(whole.choices[0].message.content, edited);
assert.equal(whole.choices[0].finish_reason, "stop");
let streamed = "";
for await (const chunk of await client.chat.completions.create({ model: cleanup, messages, stream: true }))
  streamed += chunk.choices[0].delta.content ?? "";
assert.equal(streamed, edited);

await assert.rejects(heard({ model: "whisper-1" }), (error) => {
  assert.ok(error instanceof OpenAI.NotFoundError);
  assert.equal(error.code, "model_not_found");
  assert.equal(error.param, "model");
  return true;
});
await assert.rejects(new OpenAI({ baseURL, apiKey: "svs_nobody" }).models.list(), OpenAI.AuthenticationError);
console.log("the openai client is content");
