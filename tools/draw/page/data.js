// What the page knows, unpacked.
const report = (() => {
  const data = JSON.parse(document.getElementById('data').textContent);
  const bytesOf = (base64) => Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));

  // Numbers of seven bits a byte, the low ones first.
  const numbers = (base64) => {
    const bytes = bytesOf(base64);
    let at = 0;
    return () => {
      let value = 0;
      let weight = 1;
      for (;;) {
        const byte = bytes[at++];
        value += (byte & 127) * weight;
        if (byte < 128) return value;
        weight *= 128;
      }
    };
  };

  const names = [];
  const known = numbers(data.names.known);
  for (const [state, lines] of data.names.runs) {
    for (const name of lines.split('\n')) {
      const back = known();
      names.push({state, name, known: names.length + (back % 2 ? (back + 1) / 2 : -back / 2)});
    }
  }

  const zips = [];
  const next = numbers(data.rows);
  const places = new DataView(bytesOf(data.places).buffer);
  let code = 0;
  for (let i = 0; i < data.count; ++i) {
    code += next();
    const zip = {code: String(code).padStart(5, '0'), state: next(), flags: next()};
    zip.bytes = [next(), next(), next()];
    zip.names = Array.from({length: next()}, next);
    const x = places.getUint16(4 * i, true);
    if (x !== 0xffff) {
      zip.x = x / data.steps;
      zip.y = places.getUint16(4 * i + 2, true) / data.steps;
    }
    zips.push(zip);
  }

  const modes = new Map(data.modes.map((mode) => [mode.id, {tones: mode.tones, of: bytesOf(mode.zips)}]));

  const unit = (bytes) => {
    for (const [size, name] of [[1e9, 'GB'], [1e6, 'MB'], [1e3, 'kB']]) {
      if (bytes >= size) return `${(bytes / size).toPrecision(3)} ${name}`;
    }
    return bytes === 1 ? '1 byte' : `${bytes} bytes`;
  };

  const cityText = (name) => `${names[name].name}, ${names[name].state}`;

  // What is told of a ZIP code, in parts.
  const describe = (zip) => {
    const parts = [];
    if (zip.flags & 4) parts.push('dropped since the older release');
    else if (data.bytesKnown) {
      const all = zip.bytes[0] + zip.bytes[1] + zip.bytes[2];
      const kinds = ['streets', 'PO Boxes', 'rural routes'];
      parts.push(all === 0 ? 'no partition of its own'
        : kinds.map((kind, i) => [kind, zip.bytes[i]]).filter(([, bytes]) => bytes)
          .map(([kind, bytes]) => `${kind} ${unit(bytes)}`).join(', '));
    }
    if (data.hasCut && !(zip.flags & 4)) parts.push(zip.flags & 1 ? 'in the cut' : 'not in the cut');
    if (zip.flags & 2) parts.push('added since the older release');
    if (zip.flags & 8) parts.push('moved since the older release');
    if (zip.flags & 16) parts.push('another partition since the older release');
    if (zip.x === undefined) parts.push('not on the map');
    return parts.join('; ');
  };

  return {data, names, zips, modes, unit, cityText, describe};
})();
