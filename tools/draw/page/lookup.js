// The box that finds ZIP codes and cities.
(() => {
  const {data, names, zips, cityText, describe} = report;
  const box = document.getElementById('query');
  const found = document.getElementById('found');
  const answers = document.getElementById('answers');
  const kMost = 40;
  const kMostCodes = 24;

  // The ZIP codes of a city, by the name that it is known by; made when it is first asked for.
  let ofCity;
  const zipsOf = (name) => {
    if (!ofCity) {
      ofCity = new Map();
      for (const zip of zips) {
        for (const city of zip.names) {
          const known = names[city].known;
          if (!ofCity.has(known)) ofCity.set(known, []);
          ofCity.get(known).push(zip);
        }
      }
    }
    return ofCity.get(names[name].known) || [];
  };

  const compare = (a, b) => (a < b ? -1 : a > b ? 1 : 0);

  const findZips = (text) => zips.filter((zip) => zip.code.startsWith(text));

  const findCities = (text) => {
    const words = text.split(/[\s,]+/).filter(Boolean);
    const states = new Set(data.states.map(([abbreviation]) => abbreviation));
    const search = (wanted, state) => {
      const of = names.map((name, i) => i).filter((i) => !state || names[i].state === state);
      const exact = of.filter((i) => names[i].name === wanted);
      if (exact.length) return exact;
      const starts = of.filter((i) => names[i].name.startsWith(wanted));
      return starts.length ? starts : of.filter((i) => names[i].name.includes(wanted));
    };
    const tries = [];
    if (words.length > 1 && states.has(words[words.length - 1]))
      tries.push([words.slice(0, -1).join(' '), words[words.length - 1]]);
    if (words.length > 1 && states.has(words[0])) tries.push([words.slice(1).join(' '), words[0]]);
    tries.push([words.join(' ')]);
    for (const [wanted, state] of tries) {
      const result = search(wanted, state);
      if (result.length) return result.sort((a, b) => compare(names[a].name, names[b].name) || a - b);
    }
    return [];
  };

  const entry = (title, text) => {
    const item = document.createElement('li');
    const strong = document.createElement('strong');
    strong.textContent = title;
    const more = document.createElement('p');
    more.textContent = text;
    item.append(strong, more);
    return item;
  };

  const zipEntry = (zip) => {
    const cities = zip.names.map(cityText).join('; ') || data.states[zip.state][1];
    return entry(`${zip.code} ${cities}`, describe(zip));
  };

  const cityEntry = (name) => {
    const of = zipsOf(name);
    const codes = of.slice(0, kMostCodes).map((zip) => zip.code).join(', ');
    const others = of.length > kMostCodes ? ` and ${of.length - kMostCodes} others` : '';
    const known = names[name].known;
    const also = known === name ? '' : `known as ${cityText(known)}; `;
    return entry(cityText(name), `${also}${of.length ? `ZIP codes ${codes}${others}` : 'no ZIP codes'}`);
  };

  const count = (number, one, many) => `${number.toLocaleString('en-US')} ${number === 1 ? one : many}`;

  const look = () => {
    const text = box.value.trim().toUpperCase();
    answers.replaceChildren();
    answers.hidden = true;
    if (!text) {
      found.textContent = '';
      map.mark([]);
      return;
    }
    const isCode = /^[0-9]+$/.test(text);
    const result = isCode ? findZips(text) : findCities(text);
    const told = isCode ? count(result.length, 'ZIP code', 'ZIP codes') : count(result.length, 'city', 'cities');
    found.textContent = result.length === 0 ? `Nothing found for ${text}.`
      : result.length > kMost ? `${told}, the first ${kMost}:` : `${told}:`;
    const first = result.slice(0, kMost);
    answers.hidden = first.length === 0;
    answers.append(...first.map(isCode ? zipEntry : cityEntry));
    map.mark(isCode ? first : first.flatMap(zipsOf).slice(0, 400));
  };

  let waiting;
  box.addEventListener('input', () => {
    clearTimeout(waiting);
    waiting = setTimeout(look, 150);
  });
  document.getElementById('lookup').addEventListener('submit', (event) => {
    event.preventDefault();
    clearTimeout(waiting);
    look();
  });
})();
